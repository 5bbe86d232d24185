#pragma once

#include "QuellonCore/Presentation/PanelAction.h"

#include <QWidget>

#include <vector>

class QHBoxLayout;

namespace quellon {

class PanelLink;

/// What can be done beyond the panel.
class FooterView final : public QWidget {
    Q_OBJECT
public:
    explicit FooterView(QWidget* parent = nullptr);

    /// Returns at once when this is what is shown.
    void setModel(const std::vector<PanelButton>& model);
    /// What Tab goes through, in order.
    [[nodiscard]] std::vector<QWidget*> stops() const;

Q_SIGNALS:
    void acted(const PanelAction& action);

private:
    std::vector<PanelButton> model_;
    QHBoxLayout* layout_;
    std::vector<PanelLink*> buttons_;

    void makeButtons(std::size_t count);
};

} // namespace quellon
