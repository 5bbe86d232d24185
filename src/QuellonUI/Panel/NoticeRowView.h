#pragma once

#include "QuellonCore/Presentation/MenuPanelModel.h"

#include <QWidget>

#include <optional>
#include <vector>

namespace quellon {

class FlowLayout;
class Paragraph;
class PanelLink;
class SymbolLabel;

/// Something to know or to decide: a symbol, a title, a text, perhaps what to do in steps, and what can be answered.
class NoticeRowView final : public QWidget {
    Q_OBJECT
public:
    explicit NoticeRowView(QWidget* parent = nullptr);

    /// Returns at once when this is what is shown. Without a notice the view keeps the last.
    void setModel(const std::optional<MenuPanelModel::NoticeRow>& model);
    /// What Tab goes through, in order.
    [[nodiscard]] std::vector<QWidget*> stops() const;

Q_SIGNALS:
    void acted(const PanelAction& action);

private:
    MenuPanelModel::NoticeRow model_;
    SymbolLabel* symbol_;
    Paragraph* title_;
    Paragraph* text_;
    Paragraph* steps_;
    FlowLayout* buttonLayout_;
    std::vector<PanelLink*> buttons_; ///< As many as were ever needed.

    void showButtons();
};

} // namespace quellon
