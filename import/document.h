// The project document: one JSON text that describes the devices of a project and the connections between
// them. `PjtSent` replaces a project by one.

#pragma once

namespace vorn {

/// Replaces the content of the project in slot `pjtnb`, 0 to 7, by what the NUL-terminated document `text`
/// describes, stores the project and waits 300 ms. Gives a constant text:
/// - "OK" when the document was taken in, whatever of it could not be placed or tied;
/// - "project is runing" when the project is started;
/// - "Shibai" when `text` is no JSON object, when a text of a device or connection is over 37 bytes, or when
///   either list has over 1,000,000 entries.
/// With the last two the project stays as it was. The dispatcher's lock is held, the wait included.
const char* ProjectDocumentImport(int pjtnb, const char* text);

}  // namespace vorn
