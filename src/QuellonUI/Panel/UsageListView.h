#pragma once

#include "QuellonCore/Presentation/UsageListModel.h"
#include "QuellonUI/Panel/RowPool.h"
#include "QuellonUI/Panel/UsageRowView.h"

#include <QWidget>

#include <vector>

class QVBoxLayout;

namespace quellon {

/// Who moved how much lately.
class UsageListView final : public QWidget {
    Q_OBJECT
public:
    explicit UsageListView(QWidget* parent = nullptr);

    /// Returns at once when this is what is shown.
    void setModel(const UsageListModel& model);
    /// What Tab goes through, in order.
    [[nodiscard]] std::vector<QWidget*> stops() const;

Q_SIGNALS:
    void acted(const PanelAction& action);

private:
    UsageListModel model_;
    QVBoxLayout* layout_;
    TextLabel* title_;
    TextLabel* limit_;
    QWidget* warning_;
    Paragraph* warningText_;
    Paragraph* empty_;
    QWidget* list_;
    TextLabel* hidden_;
    RowPool<UsageRowView> rows_;

    QVBoxLayout* makeList();
    void arrangeWarning();
    UsageRowView* makeRow();
};

} // namespace quellon
