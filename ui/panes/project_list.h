// What every list of recent projects has in common.
#pragma once

#include "editor/flowtide_view_model.h"
#include "ui/panes/project_summaries.h"

#include <QPainter>
#include <QPoint>
#include <QString>
#include <QWidget>
#include <functional>

namespace flowtide::projectList {

/// "Open", "Show in folder", "Remove from list".
void openMenu(QWidget& owner, const QPoint& globalPlace, FlowtideViewModel& model, const RecentProject& project,
              const ProjectSummary& summary, std::function<void()> onOpen);

/// When it was saved, or that its clip is missing.
QString secondLine(const RecentProject& project, const ProjectSummary& summary);

/// The picture, filling a place with its edges cut off; on the ground, a sign where there is none to be had.
void drawPicture(QPainter& painter, const QRectF& place, double radius, const ProjectSummary& summary, double signSize,
                 QColor ground);

/// The speed curve over the line of speed 1, with the grown range of the graph.
void drawCurve(QPainter& painter, const QRectF& place, const std::vector<double>& speeds);

} // namespace flowtide::projectList
