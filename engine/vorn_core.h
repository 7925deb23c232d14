// VornCore, the project engine: the closed library that owns the content of all open projects, the project
// store, the catalogue of module types, the running simulation and the pictures.
//
// What holds for every operation:
// - `slot` is an open project, 0 to 7; element numbers count from 0 within their kind and project; ports are
//   0 to 15, and on a node 0 to 7 are inlets and 8 to 15 outlets; positions are grid units, 1/50 of a
//   position that clients see. All integers are signed 32-bit where not told otherwise.
// - Texts are NUL-terminated and, but for `ModuleNameGet`, UTF-8 that nobody here looks into. A text that an
//   operation returns stays the engine's and is used at once: the next call may change it.
// - Nothing reports an error. A negative number means none or no room, false or zero means refused; an
//   operation without a result is taken to have worked. Numbers that name nothing are answered without harm.
// - Calls of commands come one at a time, with the dispatcher's lock held, waits included. The engine's own
//   threads run beside them, so it guards its own data and takes each operation at any time.

#pragma once

#include <cstdint>

#include "engine/vorn_records.h"

// ---- Projects and addressing ----

/// The name of the project in `slot`; a valid text also for a slot that holds none, which then is no name.
const char* ProjectNameGet(int slot);
/// The slot of the open project `name`, negative when none is open.
int ProjectNameToID(const char* name);
/// Makes a new empty project in a free slot. False when refused.
///
/// Servers of several processes and machines may share one store. An engine is expected to keep a project to
/// the one server that has it open, until it closes it or ends, however it ends: here and in
/// `ProjectInfoRead` it refuses what another one holds.
bool ProjectJsonAdd(const char* name);
/// Reads the stored information of a project and gives it a slot. Only 1 means found and read.
int ProjectInfoRead(const char* name);
/// Loads the stored content, behind a `ProjectInfoRead` that gave 1.
void ProjectDBRead(const char* name);
/// Reads an element address. The caller sets the three references to -1; what `name` does not give stays so.
/// A name that starts with an open project gives the slot; project, `_`, MOD NOD JMP or LNK, decimal number
/// gives kind and number too.
void NameParsing_ModNod(const char* name, int& kind, int& slot, int& number);
/// The number of the module, or node, that bears the identity `text`, negative when none does.
int Module_FindInstanceID(int slot, const char* text);
int Node_FindInstanceID(int slot, const char* text);
/// The list of open projects changed.
void Pipe_PjtListRef();
/// Marks that project in the list for the client.
void PeojectListRef_CliSet(const char* name);
/// Decodes a variable name. The caller sets all references to 0 or false; they count only where `found` comes
/// back true. `scope` 0 project, 1 module, else node; `type` 0 real, 1 integer, 2 real array, 3 integer
/// array; `port` is negative where the variable is no port's; `variable` is the index for the variable store.
void NameParsing(const char* name, int& scope, int& type, int& slot, int& element, int& port, int& variable,
                 bool& found);

// ---- Refresh of the view ----

/// The project's structure or layout changed. The caller then waits 300 ms.
void Pipe_PjtRef(int slot);
/// True while a refresh of the project's view still goes on.
bool GuiRef_Get(int slot);

// ---- Placement and removal ----

/// The number that the next new element will get, negative when the table is full. Reserves nothing: it is
/// asked right before the addition that uses the number.
int ProjectModuleNbCheck(int slot);
int ProjectNodeNbCheck(int slot);
int ProjectLinkNbCheck(int slot);
/// Creates a module, or node, under the number that the check gave. False when refused.
bool ProjectAddModule(const char* name, int number, int type, int page, int x, int z);
bool ProjectAddNode(const char* name, int number, int kind, int page, int x, int z);
/// Creates a link under the number that `ProjectLinkNbCheck` gave.
void ProjectAddLink(const char* name, int number, LinkSxCache link);
/// Moves an element; a vacant number is passed over.
void ProjectModuleXYSet(const char* name, int number, int x, int z);
void ProjectNodeXYSet(const char* name, int number, int x, int z);
/// Deletes an element; the links of a module or node go with it. A vacant number is passed over.
void Pipe_DeleteModule(int slot, int number);
void Pipe_DeleteNode(int slot, int number);
void Pipe_DeleteLink(int slot, int number);

// ---- Identities and names ----

/// The module type number of the identity `oneId`, negative when the catalogue has none; and the reverse.
int ModuleOneID_ToID(std::int64_t oneId);
std::int64_t ModuleOneID_Get(int type);
/// The type's name in the system code page, not in UTF-8. Empty for a type that is not in the catalogue.
const char* ModuleNameGet(int type);
/// Stores the identity of an element, at most 37 bytes.
void ModuleInstanceIDSet(int slot, int number, const char* text);
void NodeInstanceIDSet(int slot, int number, const char* text);

// ---- Ports ----

/// True for an outlet, false for an inlet.
bool ProjectModulePortInOutGet(int slot, int module, int port);
/// True when the port is already linked: taken, against what the names say.
bool ProjectModulePortCanBeLink(int slot, int module, int port);
bool ProjectNodePortCanBeLink(int slot, int node, int port);
/// The port's flag: true for a through port, where a chain goes on inside the module; false for an end port.
bool ProjectModulePortType_2_Get(int slot, int module, int port);

// ---- Closing and emptying ----

/// Closes the project and frees its slot. Takes the name of an empty slot, and a text of `ProjectNameGet`.
void ProjectInfoRemove(const char* name);
/// Behind a `ProjectInfoRead` that gave 1: true when the project has been published and can run.
bool ProjectRunFabuGet(const char* name);
/// Empties the project: all its elements go, it stays in its slot.
void Pipe_ProjectInfoClear(int slot);
/// The project's values or its list of variables changed.
void Pipe_PjtVarValueRef(int slot);

// ---- Run control ----

/// The started flag. The engine clears it by itself when it refuses a start.
bool PjtStartGet(int slot);
void PjtStartSet(int slot, bool started);
/// The paused flag.
bool PjtPauseSxGet(int slot);
void PjtPauseSxSet(int slot, bool paused);
/// Asks for one step; only ever called with true.
void StepSxSet(int slot, bool step);
/// Called behind `PjtStartSet(slot, true)`: finds by itself what was started. The result is not used.
int ProjectControllerRun();
/// True when the engine holds an access result, the reason of a refused start, and that result as a text.
bool PeojectAccess_ToServerRefGet(int slot);
const char* PeojectAccessParsingReturn_ToServerGet(int slot);
/// Copies a cache set, 0 to 2, of all elements into the run values; and the reverse.
void ProjectAllCacheInToRun(int slot, int set);
void ProjectAllRunInToCache(int slot, int set);

// ---- Item tables and value texts ----

/// Writes a value, as text, into an element's table of items. Column 1 is run, 2 to 4 are the cache sets.
void ProjectModuleItemValueSet(int slot, int module, int row, int column, const char* text);
void ProjectNodeItemValueSet(int slot, int node, int row, int column, const char* text);
/// Finished reply texts: an element's variables, its cache sets, its run values. All four kinds are taken.
const char* Pipe_ModuleVarValueGet(int slot, int kind, int number);
const char* Pipe_ModuleVarCacheGet(int slot, int kind, int number);
const char* Pipe_ModuleRunValueGet(int slot, int kind, int number);
/// The project's important values, and a module's important-value text.
const char* Pipe_ImportantGet(int slot);
void Pipe_ImportantSet(int slot, int module, const char* text);

// ---- Project variables and scripts ----

/// Adds a project variable; `zero` is always 0. Zero when the name exists or the table is full.
int ProjectVarAdd(const char* name, int zero, const char* variable);
/// Deletes a project variable. Zero when there is none of that name.
int ProjectVarDle(const char* name, const char* variable);
/// Stores the client's script, and analyses the stored one.
void ProjectLuaPreWrite(const char* name, const char* script);
void ProjectLuaAnalysis(const char* name);
/// The text of the last analysis, of whatever project.
const char* LuaAnalysisGet();
/// Has the picture written to `../AlgProject/NAME/NAME.txt`, which stands there 2500 ms later.
void Pipe_PjtPngSave(int slot);

// ---- Snapshot for the network analysis ----

/// Fills the snapshot of an open project; of any other name it makes an empty one.
void ProjectInfoGet(const char* name, ProjectCheckCache& check);
/// Called right behind `ProjectInfoGet`: fills the page links of that same record with the connections that
/// lead over jumps, as rows between modules and nodes.
void ProjectInfoJumpLinkPressing(int slot);
/// The selectors are fixed: 5 and 2.
ModulePortInfoCache ModulePortInfo(int slot, int module, int port, int selector);
AisleSxCache ModuleAisleSx(int slot, int module, int aisle, int selector);

// ---- Import of a project document ----

/// Store the project's information, then its content.
void ProjectInfoWrite(const char* name);
void ProjectDBWrite(const char* name);
/// Ties a pipe module to its two ends, and leaves the links in the project. Kinds are 1 module, 2 node.
void Pipe_PipeLinkAnalysis(int slot, int pipe, int connectionType, int startKind, int startNumber,
                           int startPort, int endKind, int endNumber, int endPort);
/// Tie a device, or an air outlet, to its room module.
void Pipe_RoomLinkAnalysis(int slot, int module, int room);
void Pipe_FengKouLinkAnaysis(int slot, int module, int room);
/// Reads a model of a type from the model store, for the `Pjt_Modu_ModelToPch` that follows.
bool Model_DB_Read(int type, const char* model);
/// The row of the named item in the module's table, negative when it has none or the module is negative.
int Pipe_ModuleVarRowGet(int slot, int module, const char* item);
