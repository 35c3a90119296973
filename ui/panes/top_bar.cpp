#include "ui/panes/top_bar.h"

#include "ui/command_rules.h"
#include "ui/icons.h"
#include "ui/key_names.h"
#include "ui/session_text.h"
#include "ui/theme.h"
#include "ui/value_text.h"

#include <QPainter>
#include <algorithm>
#include <utility>

namespace flowtide {

namespace {
constexpr int padding = 12;
constexpr int gap = 4;
constexpr int wideGap = 8;
constexpr int signSize = 14;
constexpr int longestSaveMessage = 320;
} // namespace

TopBar::TopBar(FlowtideViewModel& model, std::function<void(Command)> perform, QWidget* parent)
    : QWidget(parent)
    , model_(model) {
    const auto keys = [](const QString& text) { return keyNames::local(text); };
    const auto button = [&](const char* icon, const QString& name, const QString& tip, Command command) {
        auto* made = new IconButton(QString::fromLatin1(icon), name, keys(tip), this);
        connect(made, &IconButton::clicked, this, [perform, command] { perform(command); });
        return made;
    };
    sidebar_ = button("projects", tr("Projects"), tr("Show or hide projects (⌃⌘S)"), Command::toggleSidebar);
    open_ = button("open", tr("Open"), tr("Open a clip or project (⌘O)"), Command::open);
    undo_ = button("undo", tr("Undo"), tr("Undo (⌘Z)"), Command::undo);
    redo_ = button("redo", tr("Redo"), tr("Redo (⇧⌘Z)"), Command::redo);
    shortcuts_ = button("keyboard", tr("Keyboard Shortcuts"), tr("Keyboard shortcuts (?)"), Command::showShortcuts);
    inspector_ = button("inspector", tr("Inspector"), tr("Show or hide inspector (⌥⌘I)"), Command::toggleInspector);
    menuButton_ = new IconButton(QStringLiteral("menu"), tr("Menu"), tr("Menu"), this);
    connect(menuButton_, &IconButton::clicked, this, [this] {
        if (menu_)
            menu_->popup(menuButton_->mapToGlobal(
                QPoint(menuButton_->width() - menu_->sizeHint().width(), menuButton_->height() + gap)));
    });
    export_ = new Button(ButtonKind::primary, tr("Export…"), QStringLiteral("export"), this);
    export_->setToolTip(keys(tr("Render the retimed clip to a new file (⌘E)")));
    connect(export_, &Button::clicked, this, [perform] { perform(Command::exportClip); });

    sidebar_->setCheckable(true);
    inspector_->setCheckable(true);
    name_ = new LineLabel(theme::Type::title, theme::text, {}, this);
    name_->setAlignment(Qt::AlignHCenter);
    saved_ = new LineLabel(theme::Type::body, theme::text2, {}, this);
    setFixedHeight(barHeight);

    changes_ =
        model_.subscribe(properties({Property::clip, Property::history, Property::projectSaveMessage,
                                     Property::isExporting, Property::exportProgress, Property::pendingRelinkProject}),
                         [this](const PropertySet& changed) {
                             if (changed == properties({Property::exportProgress}))
                                 progress_.request();
                             else
                                 refresh();
                         });
    refresh();
}

void TopBar::showPanes(bool sidebar, bool inspector) {
    sidebar_->setChecked(sidebar);
    inspector_->setChecked(inspector);
}

void TopBar::setMenu(QMenu* menu) {
    menu_ = menu;
}

void TopBar::refresh() {
    const auto& clip = model_.clip();
    const auto& relink = model_.clips().pendingRelinkProject();
    hasClip_ = commandRules::isClipSeen(model_);
    const bool hasProject = hasClip_ || relink;
    for (QWidget* widget : std::initializer_list<QWidget*>{undo_, redo_, inspector_, export_})
        widget->setVisible(hasClip_);
    sidebar_->setVisible(hasProject);
    undo_->setEnabled(!model_.history().undoStack().empty());
    redo_->setEnabled(!model_.history().redoStack().empty());

    if (hasClip_)
        name_->setText(valueText::fileName(clip->url));
    else if (relink)
        name_->setText(valueText::fileName(relink->source.url.filePath().value_or(std::filesystem::path())));
    else
        name_->setText(tr("Loftwell Video"));

    const QString message = hasClip_ ? QString::fromStdString(model_.binding().projectSaveMessage()) : QString();
    const bool failed = message.startsWith(QStringLiteral("Could not save"));
    savedBadly_ = failed;
    savedWell_ = hasClip_ && !failed && message == QStringLiteral("Saved");
    saved_->setText(sessionText(message.toStdString()));
    saved_->setColor(failed ? theme::attention : theme::text2);

    const bool isExporting = model_.exporting().isExporting();
    const double progress = model_.exporting().exportProgress();
    const bool isVerifying = isExporting && progress >= 1;
    export_->setKind(isExporting ? ButtonKind::secondary : ButtonKind::primary);
    export_->setText(!isExporting  ? tr("Export…")
                     : isVerifying ? tr("Verifying…")
                                   : tr("Exporting %1").arg(valueText::percent(progress)));
    export_->setShare(isExporting && !isVerifying ? progress : -1);
    // While an export runs, nothing beside the button moves.
    export_->reserveWidthFor(isExporting ? QStringList{tr("Verifying…"), tr("Exporting %1").arg(QStringLiteral("99%"))}
                                         : QStringList());
    place();
}

void TopBar::resizeEvent(QResizeEvent*) {
    place();
}

void TopBar::place() {
    const auto centred = [](QWidget* widget, int left) {
        widget->move(left, (barHeight - 1 - widget->height()) / 2);
        return left + widget->width();
    };
    int left = padding;
    for (IconButton* button : {sidebar_, open_})
        if (!button->isHidden()) left = centred(button, left) + gap;
    if (hasClip_) {
        left += 2 * wideGap + 1 - gap;
        left = centred(undo_, left) + gap;
        left = centred(redo_, left);
    }
    int right = width() - padding;
    if (hasClip_) {
        export_->resize(export_->sizeHint());
        right = right - export_->width();
        centred(export_, right);
        right -= wideGap;
    }
    for (IconButton* button : {menuButton_, inspector_, shortcuts_})
        if (!button->isHidden()) {
            right -= button->width();
            centred(button, right);
            right -= wideGap;
        }

    // The name stands in the middle of the window, and gives way to what is beside it.
    const int sign = savedWell_ || (hasClip_ && !saved_->text().isEmpty()) ? signSize + gap : 0;
    const int savedWidth = std::min(saved_->sizeHint().width(), longestSaveMessage);
    const int tail = saved_->text().isEmpty() ? 0 : wideGap + sign + savedWidth;
    const int room = right - left - 2 * wideGap;
    const int nameWidth = std::max(0, std::min(name_->sizeHint().width(), room - tail));
    int start = (width() - nameWidth - tail) / 2;
    start = std::clamp(start, left + wideGap, std::max(left + wideGap, right - wideGap - nameWidth - tail));
    name_->setGeometry(start, 0, nameWidth, barHeight - 1);
    const int signLeft = start + nameWidth + wideGap;
    savedSign_ = tail ? QRectF(signLeft, 0, signSize, barHeight - 1) : QRectF();
    saved_->setGeometry(signLeft + sign, 0, savedWidth, barHeight - 1);
    update();
}

void TopBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), theme::pane);
    theme::drawHairline(painter, rect(), theme::Side::bottom);
    if (hasClip_) {
        const double x = open_->geometry().right() + 1 + wideGap;
        theme::drawHairline(painter, QRectF(x, (barHeight - 20) / 2.0, 1, 20), theme::Side::left, theme::border);
    }
    if (savedSign_.isEmpty()) return;
    if (savedWell_)
        icons::draw(painter, QStringLiteral("check"), savedSign_, signSize, theme::text2);
    else if (savedBadly_)
        icons::draw(painter, QStringLiteral("warning"), savedSign_, signSize, theme::attention);
}

} // namespace flowtide
