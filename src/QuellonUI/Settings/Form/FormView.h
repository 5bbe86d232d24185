#pragma once

#include "QuellonCore/Presentation/SettingsAction.h"

#include <QWidget>

namespace quellon {

/// A part of a window that draws a model and reports what the user does in it.
class FormView : public QWidget {
    Q_OBJECT
public:
    using QWidget::QWidget;

Q_SIGNALS:
    /// What a control did. The value is the receiver's own: the model that it comes from may be replaced meanwhile.
    void acted(const SettingsAction& action);

protected:
    /// Reports what `part` reports.
    template <typename Part>
    void relay(Part* part)
    {
        connect(part, &Part::acted, this, &FormView::acted);
    }
};

} // namespace quellon
