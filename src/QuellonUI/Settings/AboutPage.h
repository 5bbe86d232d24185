#pragma once

#include "QuellonCore/Presentation/AboutModel.h"
#include "QuellonUI/Kit/LinkButton.h"
#include "QuellonUI/Kit/Paragraph.h"
#include "QuellonUI/Kit/PushButton.h"
#include "QuellonUI/Kit/Switch.h"
#include "QuellonUI/Kit/TextLabel.h"
#include "QuellonUI/Settings/Form/ButtonAction.h"
#include "QuellonUI/Settings/Form/FormView.h"

#include <array>

class QTimer;
class QUrl;

namespace quellon {

/// The page about the program.
class AboutPage final : public FormView {
    Q_OBJECT
public:
    explicit AboutPage(QWidget* parent = nullptr);

    void setModel(const AboutModel& model);

Q_SIGNALS:
    /// A link was pressed.
    void openURL(const QUrl& url);
    /// The text of the version was pressed, once for each press of a double click.
    void versionTapped();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    AboutModel model_;
    Paragraph* name_;
    Paragraph* version_;
    std::array<LinkButton*, 2> links_;
    FormPress<PushButton> copy_;
    Paragraph* note_;
    QWidget* start_; ///< The switch with its title.
    TextLabel* startTitle_;
    FormPress<Switch> startSwitch_;
    Paragraph* startRefusal_;
    QTimer* copied_; ///< Until the button reads as usual again.

    void arrange();
    void arrangeStart();
    void copy(const SettingsAction& action);
};

} // namespace quellon
