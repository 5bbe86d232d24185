#pragma once

#include "QuellonCore/Engine/GuardEngine.h"
#include "QuellonCore/Notifications/NotificationFeed.h"
#include "QuellonCore/Presentation/Controls.h"
#include "QuellonCore/Presentation/OverviewModel.h"
#include "QuellonTerminal/CursesScreen.h"
#include "QuellonTerminal/Keys.h"
#include "QuellonTerminal/ResizeSignal.h"

#include <functional>
#include <memory>
#include <optional>

namespace quellon {

/// The engine on a whole terminal: it draws the overview and the controls whenever they have changed, carries out what
/// the user presses, and asks for the end when that is q. Lives on the main thread, between the engine's life and the
/// run loop's.
class TerminalView {
public:
    /// Runs the work whenever the descriptor can be read, or its other end is gone, until the handle is destroyed.
    using Watch = std::function<RunLoop::Handle(int descriptor, RunLoop::Work ready)>;

    struct Options {
        bool colours = true;
        bool keys = true; ///< Standard input is the terminal's keyboard.
    };

    /// Takes the terminal over and draws; absent when the terminal can't be drawn on. `quit` is called at most once,
    /// on q and at the end of the keyboard's input.
    [[nodiscard]] static std::unique_ptr<TerminalView> open(GuardEngine& engine, NotificationFeed& feed,
                                                            const Options& options, const Watch& watch,
                                                            std::function<void()> quit);
    /// Gives the terminal back.
    ~TerminalView();
    TerminalView(const TerminalView&) = delete;
    TerminalView& operator=(const TerminalView&) = delete;

private:
    GuardEngine& engine_;
    std::function<void()> quit_;
    std::unique_ptr<CursesScreen> screen_;
    ResizeSignal resizes_;
    Controls controls_;
    KeyDecoder keys_;
    std::optional<OverviewModel> shown_;
    ControlsModel shownControls_;
    GuardEngine::Observation observation_;
    RunLoop::Handle keyWatch_;
    RunLoop::Handle resizeWatch_;

    TerminalView(GuardEngine& engine, NotificationFeed& feed, std::unique_ptr<CursesScreen> screen,
                 std::function<void()> quit);
    void refresh();
    void paint();
    void resized();
    void readKeys();
    void obey(const Key& key);
    void end();
};

} // namespace quellon
