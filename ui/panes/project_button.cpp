#include "ui/panes/project_button.h"

#include "ui/controls/focus_ring.h"
#include "ui/panes/project_list.h"
#include "ui/theme.h"

#include <QContextMenuEvent>
#include <QFontMetricsF>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>

namespace flowtide {

namespace {
constexpr double pictureHeight = 128;
constexpr double curveHeight = 36;
constexpr double curveInset = 10;
constexpr double cardPadding = 12;
constexpr QRectF rowPicture(8, 8, 64, 36);
constexpr double rowTextLeft = 80;
constexpr double textLine = 16;
} // namespace

ProjectButton::ProjectButton(Look look, FlowtideViewModel& model, ProjectSummaries& summaries, QWidget* parent)
    : QAbstractButton(parent)
    , look_(look)
    , model_(model)
    , summaries_(summaries) {
    setFixedHeight(look == Look::card ? cardSize.height() : rowHeight);
    setFocusPolicy(Qt::TabFocus);
    setFocusRing(*this, look == Look::card ? theme::sheetRadius : theme::controlRadius);
    setCursor(Qt::PointingHandCursor);
    connect(this, &ProjectButton::clicked, this, [this] { open(); });
}

void ProjectButton::setProject(const RecentProject& project) {
    if (project == project_) return;
    project_ = project;
    setAccessibleName(QString::fromStdString(project.name));
    const double room = look_ == Look::card ? cardSize.width() - 2 * cardPadding : 224 - rowTextLeft - 8;
    const QString name = QString::fromStdString(project.name);
    setToolTip(theme::textWidth(theme::Type::label, name) > room ? name : QString());
    update();
}

void ProjectButton::open() {
    if (onOpen) onOpen(project_);
}

void ProjectButton::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        open();
    else
        QAbstractButton::keyPressEvent(event);
}

void ProjectButton::contextMenuEvent(QContextMenuEvent* event) {
    const bool isByKey = event->reason() == QContextMenuEvent::Keyboard;
    projectList::openMenu(*this, isByKey ? mapToGlobal(rect().center()) : event->globalPos(), model_, project_,
                          summaries_.summary(project_), [this] { open(); });
}

void ProjectButton::drawWords(QPainter& painter, const QRectF& name, const ProjectSummary& summary) {
    using namespace theme;
    const QString words = QFontMetricsF(theme::font(Type::label))
                              .elidedText(QString::fromStdString(project_.name), Qt::ElideMiddle, name.width() + 0.5);
    drawLine(painter, name, Qt::AlignLeft, Type::label, theme::text, words);
    const bool isMissing = summary.isKnown && summary.isMissing;
    drawLine(painter, name.translated(0, textLine + (look_ == Look::card ? 2 : 0)), Qt::AlignLeft, Type::small,
             isMissing ? attention : text2, projectList::secondLine(project_, summary));
}

void ProjectButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const ProjectSummary& summary = summaries_.summary(project_);
    setAccessibleDescription(projectList::secondLine(project_, summary));
    if (look_ == Look::card)
        paintCard(painter, summary);
    else
        paintRow(painter, summary);
}

void ProjectButton::paintCard(QPainter& painter, const ProjectSummary& summary) {
    using namespace theme;
    const QRectF card = rect();
    QPainterPath outline;
    outline.addRoundedRect(card, sheetRadius, sheetRadius);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor ground = hasFocus() ? control : hover_.color(pane, control, raised);
    painter.fillPath(outline, ground);
    painter.setClipPath(outline);
    const QRectF picture(0, 0, card.width(), pictureHeight);
    projectList::drawPicture(painter, picture, 0, summary, 28, control);
    const QRectF strip(0, pictureHeight, card.width(), curveHeight);
    painter.fillRect(strip, well);
    projectList::drawCurve(painter, strip.adjusted(curveInset, 6, -curveInset, -6), summary.speeds);
    painter.restore();
    drawWords(painter, QRectF(cardPadding, pictureHeight + curveHeight + 8, card.width() - 2 * cardPadding, textLine),
              summary);
}

void ProjectButton::paintRow(QPainter& painter, const ProjectSummary& summary) {
    using namespace theme;
    const QColor rest = isChecked() ? control : faded(control, 0);
    drawBox(painter, rect(), controlRadius, hover_.color(rest, control, raised));
    projectList::drawPicture(painter, rowPicture, laneRadius, summary, 16, isChecked() ? raised : control);
    drawWords(painter, QRectF(rowTextLeft, 10, width() - rowTextLeft - 8, textLine), summary);
}

} // namespace flowtide
