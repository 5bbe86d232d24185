#pragma once

#include "QuellonCore/Presentation/AppsTabModel.h"
#include "QuellonUI/Kit/Card.h"
#include "QuellonUI/Kit/Paragraph.h"
#include "QuellonUI/Kit/Symbol.h"
#include "QuellonUI/Settings/AppRow.h"
#include "QuellonUI/Settings/Form/RowList.h"

class QVBoxLayout;

namespace quellon {

/// The page about single applications. The picker that its model may hold is the window's to show.
class AppsPage final : public FormView {
    Q_OBJECT
public:
    explicit AppsPage(QWidget* parent = nullptr);

    void setModel(const AppsTabModel& model);

private:
    Paragraph* intro_;
    Card* empty_;
    SymbolLabel* emptySymbol_;
    Paragraph* emptyTitle_;
    Paragraph* emptyText_;
    Card* card_;
    QVBoxLayout* rowColumn_;
    RowList<AppRow, AppsTabModel::Row> rows_;
    FormPress<PushButton> add_;
    FormPress<PushButton> addDevTools_;

    AppRow* makeRow();
    void arrangeEmpty();
    void showEmpty(const AppsTabModel::Empty& empty);
};

} // namespace quellon
