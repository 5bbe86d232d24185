#pragma once

#include "QuellonCore/Presentation/LogTabModel.h"
#include "QuellonUI/Settings/LogDelegate.h"

#include <QWidget>

class QListView;

namespace quellon {

class Card;
class Paragraph;

/// The page with the activity log. Its lines can be selected, and copied with the usual key.
class LogPage final : public QWidget {
    Q_OBJECT
public:
    explicit LogPage(QWidget* parent = nullptr);

    void setModel(const LogTabModel& model);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    LogListModel lines_;
    LogDelegate* delegate_;
    Paragraph* empty_;
    Card* card_;
    QListView* list_;

    void arrange();
    void copy() const;
};

} // namespace quellon
