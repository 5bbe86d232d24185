#pragma once

#include "QuellonCore/Presentation/UsageListModel.h"
#include "QuellonUI/Kit/Pressable.h"

#include <QWidget>

#include <string>
#include <vector>

namespace quellon {

class Bar;
class Paragraph;
class PanelLink;
class SymbolLabel;
class TextLabel;

/// What is always seen of an application: a button over all of it.
class UsageRowButton final : public Pressable {
    Q_OBJECT
public:
    explicit UsageRowButton(QWidget* parent = nullptr);

    void setModel(const UsageRowModel& model);
    [[nodiscard]] QSize sizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    SymbolLabel* chevron_;
    TextLabel* name_;
    TextLabel* badge_;
    TextLabel* snooze_;
    TextLabel* amount_;
    Bar* bar_;

    void arrange();
    bool showHelp(const QPoint& at, const QPoint& global);
};

/// One application of the usage list, and what is told of it while it is open.
class UsageRowView final : public QWidget {
    Q_OBJECT
public:
    explicit UsageRowView(QWidget* parent = nullptr);

    /// Returns at once when this is what is shown.
    void setModel(const UsageRowModel& model);
    /// The application's label.
    [[nodiscard]] const std::string& key() const { return model_.toggle.action.target; }
    /// What Tab goes through, in order.
    [[nodiscard]] std::vector<QWidget*> stops() const;

Q_SIGNALS:
    void acted(const PanelAction& action);

private:
    UsageRowModel model_;
    UsageRowButton* button_;
    QWidget* details_ = nullptr; ///< Made when the row is first opened.
    Paragraph* whatItIs_ = nullptr;
    Paragraph* actionLine_ = nullptr;
    PanelLink* more_ = nullptr;

    void makeDetails();
    void showDetails();
};

} // namespace quellon
