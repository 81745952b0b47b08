// SPDX-License-Identifier: MIT
// The host by script: its suites as tables that record what they are asked, fail where a test says
// so, and show the small document that the test has built.
#pragma once

#include "adm/dialogsuites.h"
#include "adm/suites.h"
#include "ai/messages.h"
#include "ai/suites.h"
#include "sp/messages.h"
#include "sp/suites.h"
#include "tests/support/scriptedhost/textengine.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// What the host's handles point to.
struct SPPlugin {
    std::string name;
};
struct SPAccess {};
struct AINotifier {
    SPPluginRef owner = nullptr;
    std::string name;
    std::string type;
};
struct AITimer {
    SPPluginRef owner = nullptr;
    std::string name;
    std::int32_t period = 0;
    bool active = true;
};
struct AIMenuGroupRecord {
    std::string name;
};
struct AIMenuItem {
    std::string group;
    std::string text;
};
struct AIDocument {
    bool closed = false;
};
struct AIAppContext {
    SPPluginRef plugin = nullptr;
};
/// A face as the font suite tells it.
struct AIFontFace {
    std::string psName;
    std::string styleName;
    std::string familyName;
    std::string userName;
    AIFontStyleRecord style;
};
/// A group with children, or a text frame with runs, each of which uses some fonts.
struct AIArt {
    std::int16_t type = kGroupArt;
    AIArt* parent = nullptr;
    std::vector<std::unique_ptr<AIArt>> children;
    std::vector<std::vector<AIFontKey>> runs;

    AIArt& addGroup();
    AIArt& addText(std::vector<std::vector<AIFontKey>> textRuns);
    AIArt& addOther(std::int16_t otherType);
};
struct AILayer {
    AIArt group;
};

namespace scripted {

using SuiteName = std::pair<std::string, std::int32_t>;

/// The host of one test; one at a time. Its destructor does not check anything: ask the counts
/// below. Single thread.
class Host {
public:
    /// `entry` gets the messages; null when the test calls the plug-in itself.
    explicit Host(SPEntryProc entry = nullptr);
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;
    ~Host();
    /// The live one; there must be one.
    static Host& current();

    const SPBasicSuite* basic() const;

    // Messages. The globals slot is kept from one to the next.
    SPErr send(const char* caller, const char* selector);
    SPErr notify(AINotifier* notifier, const char* type, const char* selector = "AI Notify");
    SPErr notify(AINotifier& notifier) { return notify(&notifier, notifier.type.c_str()); }
    template <typename Message>
    Message message() {
        Message record;
        record.d = {basic(), &plugin, globals};
        return record;
    }
    SPEntryProc entry;
    void* globals = nullptr;
    SPPlugin plugin;
    SPPlugin otherPlugin;

    // Faults.
    /// The `nth` call (from 1; 0: every one) of the suite call `name` answers `error` and does
    /// nothing else.
    void fail(const std::string& name, AIErr error, int nth = 0);
    /// The `nth` acquisition of a suite (from 1) answers that there is none; 0: none does.
    int missingAcquisition = 0;

    // What was asked.
    std::vector<std::string> calls;      ///< names of suite calls but those that count references
    std::vector<SuiteName> acquisitions; ///< in order, failed ones included
    std::vector<SuiteName> releases;     ///< in order
    std::map<SuiteName, int> acquired;   ///< held now
    std::vector<std::string> misuse;     ///< releases of what is not held, dead references, ...
    int callsOf(std::string_view name) const;

    // What people see.
    std::vector<std::string> errorAlerts;
    std::vector<std::string> messageAlerts;
    std::vector<std::pair<std::string, std::string>> aboutBoxes;
    std::vector<std::pair<std::string, std::int32_t>> dialogs; ///< name and layout; all are refused
    std::string locale = "en_US";
    std::map<std::int32_t, std::map<std::int32_t, std::string>> strings;

    // What is registered.
    std::vector<std::unique_ptr<AINotifier>> notifiers;
    std::vector<std::unique_ptr<AITimer>> timers;
    std::vector<std::unique_ptr<AIMenuItem>> menuItems;
    std::vector<std::unique_ptr<AIMenuGroupRecord>> menuGroups;
    std::vector<std::unique_ptr<AIAppContext>> contexts; ///< open now
    std::vector<std::unique_ptr<SPAccess>> accesses;     ///< held now
    AINotifier& notifierOf(std::string_view type, std::string_view name = "GlyphoraPlugin");

    // The document.
    AIDocument document;
    std::vector<std::unique_ptr<AILayer>> layers;
    std::vector<std::unique_ptr<AIFontFace>> fonts;
    AIArt& addLayer();
    AIFontKey addFont(AIFontFace face);
    /// A face named "Family-Style" by PostScript, TrueType outlines.
    AIFontKey addFont(const std::string& family, const std::string& style, bool present);

    TextEngine text;

    /// For the tables: notes the call; the fault that a test wants, kBadParameterErr unless `ok`,
    /// or 0.
    AIErr enter(const char* name, bool ok = true);

private:
    struct Fault {
        AIErr error;
        int nth;
        int seen;
    };
    std::map<std::string, Fault, std::less<>> faults_;
};

/// The table of a suite by name and version; null when there is none.
const void* findSuite(std::string_view name, std::int32_t version);

/// Copies what fits into `size` bytes, and a zero behind it.
void copyText(const std::string& text, char* buffer, std::int32_t size);

// The tables of those suites that have calls.
#define GLYPHORA_SCRIPTED_TABLES(X)                                                                \
    X(SPAccessSuite, accessTable)                                                                  \
    X(SPPluginsSuite, pluginsTable)                                                                \
    X(AINotifierSuite, notifierTable)                                                              \
    X(AITimerSuite, timerTable)                                                                    \
    X(AIAppContextSuite, contextTable)                                                             \
    X(AIMenuSuite, menuTable)                                                                      \
    X(AIDocumentSuite, documentTable)                                                              \
    X(AIDocumentListSuite, documentListTable)                                                      \
    X(AILayerSuite, layerTable)                                                                    \
    X(AIArtSuite, artTable)                                                                        \
    X(AITextFrameSuite, textFrameTable)                                                            \
    X(AIFontSuite, fontTable)                                                                      \
    X(ADMBasicSuite, admBasicTable)                                                                \
    X(ADMHostSuite, admHostTable)                                                                  \
    X(ADMDialogSuite, admDialogTable)                                                              \
    X(ATE::TextFrameSuite, ateTextFrameTable)                                                      \
    X(ATE::TextRangeSuite, ateTextRangeTable)                                                      \
    X(ATE::TextRunsIteratorSuite, ateRunsTable)                                                    \
    X(ATE::CharInspectorSuite, ateInspectorTable)                                                  \
    X(ATE::ArrayFontRefSuite, ateFontArrayTable)                                                   \
    X(ATE::FontSuite, ateFontTable)                                                                \
    X(ATE::CharFeaturesSuite, ateFeaturesTable)
#define SCRIPTED_DECLARE(type, table) extern const type table;
GLYPHORA_SCRIPTED_TABLES(SCRIPTED_DECLARE)
#undef SCRIPTED_DECLARE
extern const SPBasicSuite basicTable;

} // namespace scripted
