#include "Quellon/DebugPanelOpener.h"

#include "QuellonCore/Diagnostics/DebugHooks.h"
#include "QuellonCore/Measurement/Shell.h"
#include "QuellonCore/Presentation/AboutInfo.h"
#include "QuellonUI/Debug/DebugPanel.h"
#include "QuellonUI/Kit/Appearance.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <variant>

namespace quellon {

DebugPanelOpener::DebugPanelOpener(const AboutModel::Build& build, NotificationFeed& feed,
                                   std::function<void()> refreshCapability)
    : version_(AboutInfo::displayVersion(build.shortVersion, build.build)),
      systemVersion_(build.systemVersion),
      feed_(feed),
      self_(std::make_shared<DebugPanelOpener*>(this))
{
    DebugHooks::openDebugPanel = [this](GuardEngine& engine) { open(engine); };
    DebugHooks::refreshNotificationCapability = std::move(refreshCapability);
}

DebugPanelOpener::~DebugPanelOpener()
{
    DebugHooks::openDebugPanel = nullptr;
    DebugHooks::refreshNotificationCapability = nullptr;
}

void DebugPanelOpener::open(GuardEngine& engine)
{
    engine_ = &engine;
    if (!panel_) {
        Appearance::applyFonts();
        panel_ = std::make_unique<DebugPanel>();
        QObject::connect(panel_.get(), &DebugPanel::acted, panel_.get(),
                         [this](const DebugAction& action) { act(action); });
    }
    read();
    panel_->show();
    panel_->raise();
    panel_->activateWindow();
}

void DebugPanelOpener::read()
{
    snapshot_ = DebugSnapshot::capture(*engine_, version_, systemVersion_, engine_->host().clock.now());
    network_ = NetworkLog::shared().snapshot();
    state_.outlines.clear();
    show();
}

void DebugPanelOpener::show()
{
    const DebugPanelModel model = DebugPanelModel::of(*engine_, snapshot_, network_, state_);
    state_.page = model.page;
    panel_->setModel(model);
    outline();
}

/// Sees to the outline of the file whose page is shown.
void DebugPanelOpener::outline()
{
    const auto file = DebugPanelModel::file(snapshot_, state_.page);
    if (!file || state_.outlines.contains(*file)) return;
    const auto entry = std::ranges::find(snapshot_.files, *file, &StateFileEntry::name);
    if (entry != snapshot_.files.end() && entry->byteCount > DebugPanelModel::largestFile) {
        state_.outlines[*file] = DebugPanelModel::tooLargeText();
        show();
        return;
    }
    state_.outlines[*file] = DebugPanelModel::readingText;
    const Host& host = engine_->host();
    auto content = host.files.read(Persistence{host}.directory() / *file);
    Shell::offMain<std::string>(
        host, [content = std::move(content)] { return DebugPanelModel::outline(content); },
        [weak = std::weak_ptr{self_}, file = *file](const std::string& text) {
            const auto self = weak.lock();
            if (!self) return;
            (*self)->state_.outlines[file] = text;
            (*self)->show();
        });
}

void DebugPanelOpener::act(const DebugAction& action)
{
    if (const auto* page = std::get_if<DebugActions::SelectPage>(&action)) {
        state_.page = page->index;
        state_.copied = false;
    } else if (const auto* copied = std::get_if<DebugActions::ShowCopied>(&action)) {
        state_.copied = copied->copied;
    } else if (const auto* run = std::get_if<DebugActions::Run>(&action)) {
        perform(run->command, *engine_, feed_);
    } else {
        DebugHooks::refreshNotificationCapability();
        read();
        return;
    }
    show();
}

} // namespace quellon
