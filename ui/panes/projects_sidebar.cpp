#include "ui/panes/projects_sidebar.h"

#include "ui/icons.h"
#include "ui/key_names.h"
#include "ui/theme.h"

#include <QPainter>
#include <QVBoxLayout>
#include <cmath>

namespace flowtide {

namespace {
constexpr int headHeight = 60;
constexpr int footHeight = 40;
constexpr int inset = 8;
constexpr int rowGap = 4;
constexpr int padding = 16;
constexpr int pictureWidth = 64;
} // namespace

ProjectsSidebar::ProjectsSidebar(SessionHost& host, QWidget* parent)
    : QWidget(parent)
    , model_(host.model())
    , summaries_(host.scheduler(), host.pictures(), static_cast<int>(std::ceil(pictureWidth * devicePixelRatioF())))
    , area_(new SlimScrollArea(this))
    , list_(new QWidget) {
    setAccessibleName(tr("Projects"));
    auto* column = new QVBoxLayout(list_);
    column->setContentsMargins(inset, 0, inset, inset);
    column->setSpacing(rowGap);
    column->addStretch(1);
    area_->setContent(list_);
    summaries_.onChanged = [this] { list_->update(); };
    changes_ = model_.subscribe(properties({Property::recentProjects, Property::clip, Property::pendingRelinkProject}),
                                [this](const PropertySet&) { refresh(); });
    refresh();
}

void ProjectsSidebar::refresh() {
    const RecentProjects& projects = model_.binding().recentProjects();
    const auto& relink = model_.clips().pendingRelinkProject();
    const std::optional<Uuid> open = relink          ? std::optional(relink->id)
                                     : model_.clip() ? std::optional(model_.binding().projectID())
                                                     : std::nullopt;
    auto* column = static_cast<QVBoxLayout*>(list_->layout());
    for (std::size_t index = 0; index < projects.size(); ++index) {
        if (index == rows_.size()) {
            auto* row = new ProjectButton(ProjectButton::Look::row, model_, summaries_, list_);
            row->setCheckable(true);
            row->onOpen = [this, row](const RecentProject& project) {
                if (onProject && !row->isChecked()) onProject(project);
            };
            column->insertWidget(static_cast<int>(index), row);
            rows_.push_back(row);
        }
        rows_[index]->setProject(projects[index]);
        rows_[index]->setChecked(open == projects[index].id);
        rows_[index]->show();
    }
    for (std::size_t index = projects.size(); index < rows_.size(); ++index)
        rows_[index]->hide();
}

void ProjectsSidebar::resizeEvent(QResizeEvent*) {
    area_->setGeometry(0, headHeight, width() - 1, std::max(height() - headHeight - footHeight, 0));
}

void ProjectsSidebar::paintEvent(QPaintEvent*) {
    using namespace theme;
    QPainter painter(this);
    painter.fillRect(rect(), pane);
    drawHairline(painter, rect(), Side::right);
    const double room = width() - 2.0 * padding;
    drawLine(painter, QRectF(padding, 14, room, 16), Qt::AlignLeft, Type::title, theme::text, tr("Projects"));
    drawLine(painter, QRectF(padding, 32, room, 16), Qt::AlignLeft, Type::small, text2,
             tr("Autosaved projects and recent clips"));
    const QRectF foot(0, height() - footHeight, width(), footHeight);
    drawHairline(painter, foot, Side::top);
    icons::draw(painter, QStringLiteral("drive"), QRectF(padding, foot.top(), 16, footHeight), 16, text2);
    drawLine(painter, QRectF(padding + 24, foot.top(), room - 24, footHeight), Qt::AlignLeft, Type::small, text2,
             tr("Saved on %1").arg(keyNames::thisComputer()));
}

} // namespace flowtide
