#include "ui/panes/shortcut_sheet.h"

#include "ui/accessible_role.h"
#include "ui/keys_owner.h"
#include "ui/panes/keycaps.h"
#include "ui/theme.h"

#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <algorithm>
#include <array>

namespace flowtide {

namespace {

constexpr QSize wholeSize{1328, 640};
constexpr int padding = 32;
constexpr int headHeight = 77;
constexpr int groupsTop = 24;
constexpr int titleHeight = 16;
constexpr int titleGap = 8;
constexpr int rowHeight = 32;
constexpr int groupGap = 20;
constexpr int columnPitch = 428;
constexpr int thirdColumnShift = 4; ///< its widest text ends with the sheet's padding
constexpr int keysGap = 12;
/// The room for keys, by how many columns there are.
constexpr std::array threeColumnKeys{136, 148, 156};
constexpr int widestKeys = 156;

struct Place {
    const ShortcutGroup* group;
    int x;
    int y;
    int keysWidth;
};

} // namespace

std::vector<std::vector<int>> shortcutColumns(int windowWidth) {
    if (windowWidth >= 1360) return {{0, 1}, {2, 3, 4}, {5, 6}};
    if (windowWidth >= 960) return {{0, 1, 2}, {3, 4, 5, 6}};
    return {{0, 1, 2, 3, 4, 5, 6}};
}

/// The groups in their columns.
class ShortcutSheet::Groups final : public QWidget {
public:
    explicit Groups(QWidget* parent)
        : QWidget(parent) {
        QStringList spoken;
        for (const ShortcutGroup& group : sheet_)
            for (const ShortcutItem& item : group.items)
                spoken << QStringLiteral("%1: %2").arg(item.keys, item.action);
        setAccessibleRole(*this, QAccessible::StaticText);
        setAccessibleName(ShortcutSheet::tr("Keyboard Shortcuts"));
        setAccessibleDescription(spoken.join(QStringLiteral(". ")));
    }

    int lay(int windowWidth) {
        places_.clear();
        const auto columns = shortcutColumns(windowWidth);
        int lowest = 0;
        for (std::size_t column = 0; column < columns.size(); ++column) {
            const int keys = columns.size() == 3 ? threeColumnKeys[column] : widestKeys;
            int y = groupsTop;
            for (const int index : columns[column]) {
                const ShortcutGroup& group = sheet_[static_cast<std::size_t>(index)];
                places_.push_back(
                    {&group, padding + static_cast<int>(column) * columnPitch + (column == 2 ? thirdColumnShift : 0), y,
                     keys});
                y += titleHeight + titleGap + static_cast<int>(group.items.size()) * rowHeight + groupGap;
            }
            lowest = std::max(lowest, y);
        }
        setFixedHeight(lowest);
        update();
        return lowest;
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        for (const Place& place : places_) {
            theme::drawLine(painter, QRectF(place.x, place.y, columnPitch, titleHeight), Qt::AlignLeft,
                            theme::Type::caps, theme::text2, place.group->title.toUpper());
            double y = place.y + titleHeight + titleGap;
            for (const ShortcutItem& item : place.group->items) {
                keycaps::draw(painter, QPointF(place.x, y + rowHeight / 2.0), keycaps::pieces(item.keys));
                const QRectF words(place.x + place.keysWidth + keysGap, y, columnPitch, rowHeight);
                theme::drawLine(painter, words, Qt::AlignLeft, theme::Type::body, theme::text, item.action);
                y += rowHeight;
            }
        }
    }

private:
    std::vector<ShortcutGroup> sheet_ = Shortcuts::sheet();
    std::vector<Place> places_;
};

ShortcutSheet::ShortcutSheet(QWidget* parent)
    : QWidget(parent)
    , area_(new SlimScrollArea(this)) {
    setAccessibleRole(*this, QAccessible::Dialog);
    setAccessibleName(tr("Keyboard Shortcuts"));
    setFocusPolicy(Qt::StrongFocus);
    groups_ = new Groups(area_);
    area_->setContent(groups_);
    close_ = new IconButton(QStringLiteral("close"), tr("Close"), tr("Close (Esc)"), this);
    connect(close_, &IconButton::clicked, this, [this] {
        if (onClose) onClose();
    });
}

QSize ShortcutSheet::sizeHint() const {
    const int room = window() ? window()->width() : wholeSize.width();
    const auto columns = static_cast<int>(shortcutColumns(room).size());
    if (columns == 3) return wholeSize;
    return {2 * padding + columns * columnPitch - (columns > 1 ? 16 : 0), headHeight + groups_->lay(room) + 12};
}

void ShortcutSheet::resizeEvent(QResizeEvent*) {
    close_->move(width() - padding - close_->width() + 12, (headHeight - close_->height()) / 2);
    area_->setGeometry(1, headHeight, width() - 2, height() - headHeight - 8);
    groups_->lay(window()->width());
}

void ShortcutSheet::keyPressEvent(QKeyEvent* event) {
    QScrollBar* bar = area_->verticalScrollBar();
    switch (event->key()) {
    case Qt::Key_Up:
        return bar->setValue(bar->value() - rowHeight);
    case Qt::Key_Down:
        return bar->setValue(bar->value() + rowHeight);
    case Qt::Key_PageUp:
        return bar->setValue(bar->value() - bar->pageStep());
    case Qt::Key_PageDown:
        return bar->setValue(bar->value() + bar->pageStep());
    default:
        QWidget::keyPressEvent(event);
    }
}

void ShortcutSheet::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    theme::drawBox(painter, rect(), theme::sheetRadius, theme::raised, theme::border);
    const QRectF words(padding, 20, width() - 2.0 * padding, 24);
    theme::drawLine(painter, words, Qt::AlignLeft, theme::Type::sheetTitle, theme::text, tr("Keyboard Shortcuts"));
    theme::drawLine(painter, QRectF(padding, 42, words.width(), 16), Qt::AlignLeft, theme::Type::body, theme::text2,
                    tr("Press ? anytime in the editor to show this reference."));
    theme::drawHairline(painter, QRectF(1, headHeight - 1, width() - 2, 1), theme::Side::bottom, theme::border);
}

} // namespace flowtide
