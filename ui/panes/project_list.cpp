#include "ui/panes/project_list.h"

#include "ui/icons.h"
#include "ui/panes/project_date.h"
#include "ui/show_in_folder.h"
#include "ui/theme.h"

#include <QCoreApplication>
#include <QMenu>
#include <QPainterPath>
#include <algorithm>
#include <cmath>
#include <utility>

namespace flowtide::projectList {

namespace {

// The range of speeds that the graph shows when nothing asks for more.
constexpr double usualSlowest = 0.1;
constexpr double usualFastest = 4;

} // namespace

void openMenu(QWidget& owner, const QPoint& globalPlace, FlowtideViewModel& model, const RecentProject& project,
              const ProjectSummary& summary, std::function<void()> onOpen) {
    auto* menu = new QMenu(&owner);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(QCoreApplication::translate("ProjectList", "Open"), &owner, std::move(onOpen));
    const std::filesystem::path shown =
        summary.isMissing ? project.projectURL.filePath().value_or(std::filesystem::path()) : summary.clip;
    menu->addAction(QCoreApplication::translate("ProjectList", "Show in folder"), &owner,
                    [shown] { showInFolder(shown); })
        ->setEnabled(!shown.empty());
    menu->addSeparator();
    menu->addAction(QCoreApplication::translate("ProjectList", "Remove from list"), &owner,
                    [&model, id = project.id] { model.removeFromRecent(id); });
    menu->popup(globalPlace);
}

QString secondLine(const RecentProject& project, const ProjectSummary& summary) {
    if (summary.isKnown && summary.isMissing) return QCoreApplication::translate("ProjectList", "Clip not found");
    return projectDate(project.savedAt, QDateTime::currentDateTime());
}

void drawPicture(QPainter& painter, const QRectF& place, double radius, const ProjectSummary& summary, double signSize,
                 QColor ground) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath outline;
    outline.addRoundedRect(place, radius, radius);
    painter.setPen(Qt::NoPen);
    if (summary.picture.isNull()) {
        painter.fillPath(outline, ground);
        if (summary.isKnown && summary.isMissing)
            icons::draw(painter, QStringLiteral("clip-missing"), place, signSize, theme::attention);
    } else {
        const QSizeF size = summary.picture.size();
        const double scale = std::max(place.width() / size.width(), place.height() / size.height());
        const QSizeF cut = place.size() / scale;
        const QRectF source(QPointF((size.width() - cut.width()) / 2, (size.height() - cut.height()) / 2), cut);
        painter.setClipPath(outline, Qt::IntersectClip);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(place, summary.picture, source);
    }
    painter.restore();
}

void drawCurve(QPainter& painter, const QRectF& place, const std::vector<double>& speeds) {
    const double slowest = speeds.empty() ? 1 : *std::ranges::min_element(speeds);
    const double fastest = speeds.empty() ? 1 : *std::ranges::max_element(speeds);
    const double bottom = std::log(std::min(slowest, usualSlowest));
    const double top = std::log(std::max(fastest, usualFastest));
    const auto y = [&](double speed) {
        return place.bottom() - (std::log(speed) - bottom) / (top - bottom) * place.height();
    };
    const double line = theme::hairlineWidth(painter);
    painter.fillRect(theme::onPixels(painter, QRectF(place.left(), y(1), place.width(), line)), theme::border);
    if (speeds.size() < 2) return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(theme::curve, 1.5));
    std::vector<QLineF> lines;
    const double step = place.width() / static_cast<double>(speeds.size() - 1);
    for (std::size_t index = 1; index < speeds.size(); ++index)
        lines.emplace_back(place.left() + step * static_cast<double>(index - 1), y(speeds[index - 1]),
                           place.left() + step * static_cast<double>(index), y(speeds[index]));
    painter.drawLines(lines.data(), static_cast<int>(lines.size()));
    painter.restore();
}

} // namespace flowtide::projectList
