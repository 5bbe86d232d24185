#pragma once

#include "QuellonCore/Presentation/PanelAction.h"
#include "QuellonUI/Kit/LinkButton.h"

namespace quellon {

/// One of the panel's buttons that look like links.
class PanelLink final : public LinkButton {
    Q_OBJECT
public:
    explicit PanelLink(const QFont& font, QWidget* parent = nullptr);

    /// Returns at once when this is what is shown. A press that began when the button did something else does not
    /// count.
    void setModel(const PanelButton& model);

Q_SIGNALS:
    void acted(const PanelAction& action);

private:
    PanelButton model_;
};

} // namespace quellon
