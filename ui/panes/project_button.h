// A recent project that can be opened: a card of the start screen, or a row of the sidebar.
#pragma once

#include "editor/flowtide_view_model.h"
#include "ui/controls/hover.h"
#include "ui/panes/project_summaries.h"

#include <QAbstractButton>
#include <functional>

namespace flowtide {

class ProjectButton final : public QAbstractButton {
    Q_OBJECT

public:
    enum class Look { card, row };
    static constexpr QSize cardSize{246, 220};
    static constexpr int rowHeight = 52;

    ProjectButton(Look look, FlowtideViewModel& model, ProjectSummaries& summaries, QWidget* parent = nullptr);

    void setProject(const RecentProject& project);
    const RecentProject& project() const { return project_; }
    std::function<void(const RecentProject& project)> onOpen;

    QSize sizeHint() const override { return look_ == Look::card ? cardSize : QSize(224, rowHeight); }

protected:
    /// A checked row is the open project: the session says which, not the click.
    void nextCheckState() override {}
    void paintEvent(QPaintEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void paintCard(QPainter& painter, const ProjectSummary& summary);
    void paintRow(QPainter& painter, const ProjectSummary& summary);
    void drawWords(QPainter& painter, const QRectF& name, const ProjectSummary& summary);
    void open();

    Look look_;
    FlowtideViewModel& model_;
    ProjectSummaries& summaries_;
    RecentProject project_;
    Hover hover_{*this};
};

} // namespace flowtide
