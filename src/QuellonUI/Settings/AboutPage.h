#pragma once

#include "QuellonCore/Presentation/AboutModel.h"
#include "QuellonUI/Kit/LinkButton.h"
#include "QuellonUI/Kit/Paragraph.h"
#include "QuellonUI/Kit/PushButton.h"
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

private:
    AboutModel model_;
    Paragraph* name_;
    Paragraph* version_;
    std::array<LinkButton*, 2> links_;
    FormPress<PushButton> copy_;
    Paragraph* note_;
    QTimer* copied_; ///< Until the button reads as usual again.

    void arrange();
    void copy(const SettingsAction& action);
};

} // namespace quellon
