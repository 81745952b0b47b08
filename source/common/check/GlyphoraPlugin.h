// SPDX-License-Identifier: MIT
// The plug-in itself: checks the fonts of every document that the host opens.
#pragma once

#include "Plugin.h"

#include <memory>

/// The concrete plug-in. [main-thread]
class GlyphoraPlugin : public Plugin {
public:
    explicit GlyphoraPlugin(SPPluginRef pluginRef) noexcept;
    ~GlyphoraPlugin() override;

    /// Throws the host's error (std::int32_t) when the document-changed notifier or the timer
    /// cannot be registered; the object stays in the host's slot then.
    AIErr StartupPlugin(SPInterfaceMessage* message) override;
    AIErr ShutdownPlugin(SPInterfaceMessage* message) override;
    /// Finds the handles again that the host has kept meanwhile.
    AIErr ReloadPlugin(SPAccessMessage* message) override;
    AIErr SetGlobal(Plugin* plugin) override;
    /// Passes on what the font check throws; a standard exception is first printed to standard
    /// output.
    AIErr Notify(AINotifierMessage* message) override;
    AIErr GoMenuItem(AIMenuMessage* /*message*/) override { return kNoErr; }
    AIErr UpdateMenuItem(AIMenuMessage* /*message*/) override { return kNoErr; }

    /// Closes the current document. This is not the base's GoTimer, so the host's timer message
    /// does not come here; nor is the timer ever active.
    AIErr Timer(AITimerMessage* message);

    /// Constructs the object anew over itself, with the members that it has. Only the dispatch
    /// table changes, to that of the code that runs now.
    static void FixupVTable(Plugin* plugin) noexcept;

protected:
    /// An object that is told of the shut-down. None is so far.
    class Auxiliary {
    public:
        virtual ~Auxiliary() = default;
        virtual void ShutdownPlugin(SPInterfaceMessage* message) = 0;
    };

    /// The members beside the base's, held together for the same reason as those.
    struct CheckState {
        std::unique_ptr<Auxiliary> auxiliary;
        AINotifierHandle documentOpenedNotifier = nullptr;
        AINotifierHandle applicationStartedNotifier = nullptr;
        AINotifierHandle documentChangedNotifier = nullptr;
        AITimerHandle closeTheDocTimer = nullptr;
    };

    CheckState check_;

private:
    GlyphoraPlugin(State&& state, CheckState&& check) noexcept;

    AIErr checkFonts(const AINotifierMessage* message);
    void restoreNotifiers();
    void restoreTimer();
};
