// The one function in which every request of every front end ends.

#pragma once

#include <string>
#include <string_view>

#include "text/json.h"

namespace vorn {

/// The reply to a request that there was no memory for.
inline constexpr std::string_view MishapReply = "出现莫名错误,请联系技术支持";

/// True for a word whose exchanges count as writes.
bool WordWrites(std::string_view midHeader);

/// Serves one request and logs the exchange. `midHeader` is the command word, `midData` a name or address,
/// `midValue` a value or JSON text; texts are taken byte for byte, and `reply` is overwritten. A word that
/// the dispatcher does not serve itself goes to the project commands. Lets no exception out: a request that
/// there is no memory for gets `MishapReply`, or an empty reply. The caller holds `DispatchLock`.
///
/// `batch` is the document that `midValue` is the text of, where the caller has parsed it: a batch is then
/// not parsed again.
void ServerDispatch(const std::string& midHeader, const std::string& midData, const std::string& midValue,
                    std::string& reply, const JsonValue* batch = nullptr);

}  // namespace vorn
