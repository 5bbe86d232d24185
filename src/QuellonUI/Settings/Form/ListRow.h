#pragma once

#include "QuellonUI/Settings/Form/FormView.h"

namespace quellon {

/// A row of several of its kind, with a fine line to the row above.
class ListRow : public FormView {
    Q_OBJECT
public:
    using FormView::FormView;

    /// There is no line above the first.
    void setFirst(bool first);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool first_ = true;
};

} // namespace quellon
