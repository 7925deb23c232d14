// A project document: taken in, analysed, reported, drawn, run a step, stored and opened again.

#include <string>

#include "standin/project.h"
#include "standin/project_json.h"
#include "tests/fuzz/front.h"
#include "tests/fuzz/utf8.h"

namespace {

std::string Content() {
    const std::lock_guard guard(standin::EngineLock());
    std::string text;
    standin::ProjectToJson(*standin::ProjectFind("P"), text);
    return text;
}

void CheckReports(bool clean) {
    const std::string verdict = Ask("NetAccess", "P");
    const std::string report = Ask("PjtInfoChk", "P");
    Require(!clean || (IsUtf8(verdict) && IsUtf8(report)), "a report of UTF-8 is UTF-8", report);
    Require(report.starts_with('{') && report.ends_with('}'), "a report is a JSON object", report);
    for (const char* drawing : {"PjtPngGet", "PjtChartGet"}) {
        const std::string picture = Ask(drawing, "P");
        Require(picture.starts_with("<") && picture.find("</svg>") != std::string::npos, "a picture is whole",
                picture);
        Require(!clean || IsUtf8(picture), "a picture of UTF-8 is UTF-8", picture);
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    BeginWithProject();
    const std::string before = Content();
    const std::string document(Text(bytes, size));
    const std::string reply = Ask("PjtSent", "P", document);
    Require(reply == "OK" || reply == "Shibai", "a document is taken or refused", reply);
    if (reply != "OK") {
        Require(Content() == before, "a refused document changes nothing", document);
        return 0;
    }
    CheckReports(IsUtf8(document));
    const std::string content = Content();
    Ask("PjtClose", "P");
    Require(Ask("Open", "P") == "OK", "what was stored is opened", content);
    Require(Content() == content, "what is opened is what was stored", content);
    return 0;
}
