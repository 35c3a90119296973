// The reference of all keys.
#pragma once

#include "ui/controls/buttons.h"
#include "ui/controls/scroll_area.h"
#include "ui/shortcuts.h"

#include <QWidget>
#include <functional>
#include <vector>

namespace flowtide {

/// How many columns the sheet has in a window of some width, and which groups stand in each.
std::vector<std::vector<int>> shortcutColumns(int windowWidth);

class ShortcutSheet final : public QWidget {
    Q_OBJECT

public:
    explicit ShortcutSheet(QWidget* parent = nullptr);

    std::function<void()> onClose;
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    class Groups;

    Groups* groups_;
    SlimScrollArea* area_;
    IconButton* close_;
};

} // namespace flowtide
