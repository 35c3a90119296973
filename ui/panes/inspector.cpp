#include "ui/panes/inspector.h"

#include "ui/controls/focus_ring.h"
#include "ui/controls/scroll_area.h"
#include "ui/panes/clip_tab.h"
#include "ui/panes/framing_tab.h"
#include "ui/panes/speed_tab.h"
#include "ui/theme.h"

#include <QPainter>
#include <QVBoxLayout>
#include <QWheelEvent>

namespace flowtide {

namespace {
constexpr int tabsHeight = 44;
constexpr int tabsPadding = 8;
constexpr int underlineInset = 8;
constexpr double underline = 2;
} // namespace

/// Equally wide; the chosen one is underlined.
class Inspector::Tabs final : public QTabBar {
public:
    explicit Tabs(QWidget* parent)
        : QTabBar(parent) {
        setDrawBase(false);
        setExpanding(false);
        setUsesScrollButtons(false);
        setMouseTracking(true);
        setFixedHeight(tabsHeight);
        setFocusPolicy(Qt::TabFocus);
        setFocusRing(*this, theme::controlRadius);
        setAccessibleName(Inspector::tr("Inspector"));
        for (const QString& name : {Inspector::tr("Speed"), Inspector::tr("Framing"), Inspector::tr("Clip")})
            addTab(name);
    }

protected:
    QSize tabSizeHint(int index) const override {
        // What does not divide by three goes to the first.
        const int third = width() / 3;
        return {index == 0 ? width() - 2 * third : third, tabsHeight};
    }
    QSize minimumTabSizeHint(int index) const override { return tabSizeHint(index); }

    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        for (int index = 0; index < count(); ++index) {
            const QRectF place = tabRect(index);
            const bool isChosen = index == currentIndex();
            const bool isHovered = tabRect(index).contains(mapFromGlobal(QCursor::pos())) && underMouse();
            theme::drawLine(painter, place, Qt::AlignHCenter, theme::Type::label,
                            isChosen || isHovered ? theme::text : theme::text2, tabText(index));
            if (isChosen)
                painter.fillRect(QRectF(place.left() + underlineInset, place.bottom() - underline,
                                        place.width() - 2 * underlineInset, underline),
                                 theme::text);
        }
    }
    void enterEvent(QEnterEvent* event) override {
        update();
        QTabBar::enterEvent(event);
    }
    void leaveEvent(QEvent* event) override {
        update();
        QTabBar::leaveEvent(event);
    }
    void mouseMoveEvent(QMouseEvent* event) override {
        update();
        QTabBar::mouseMoveEvent(event);
    }
    void wheelEvent(QWheelEvent* event) override { event->ignore(); }
};

Inspector::Inspector(SessionHost& host, QWidget* parent)
    : Inspector(InspectorSession{host.model(), host.points(), host.settings()}, parent) {}

Inspector::Inspector(const InspectorSession& session, QWidget* parent)
    : QWidget(parent)
    , model_(session.model)
    , tabs_(new Tabs(this))
    , pages_(new QStackedWidget(this)) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(1, 0, 0, 0);
    column->setSpacing(0);
    auto* head = new QVBoxLayout;
    head->setContentsMargins(tabsPadding - 1, 0, tabsPadding, 0);
    head->addWidget(tabs_);
    column->addLayout(head);
    column->addWidget(pages_, 1);
    for (QWidget* content :
         std::initializer_list<QWidget*>{new SpeedTab(session), new FramingTab(session), new ClipTab(session)}) {
        auto* area = new SlimScrollArea(pages_);
        area->setContent(content);
        pages_->addWidget(area);
    }
    connect(tabs_, &QTabBar::currentChanged, pages_, &QStackedWidget::setCurrentIndex);
    connect(tabs_, &QTabBar::currentChanged, this, &Inspector::tellSpeedPage);
    changes_ = model_.subscribe(properties({Property::editorMode}), [this](const PropertySet&) {
        if (tab() != WorkspaceInspectorTab::clip)
            setTab(model_.timeline().editorMode() == CurveEditorMode::speed ? WorkspaceInspectorTab::speed
                                                                            : WorkspaceInspectorTab::framing);
    });
}

void Inspector::tellSpeedPage() {
    if (onSpeedPageShown) onSpeedPageShown(isVisible() && tab() == WorkspaceInspectorTab::speed);
}

void Inspector::showEvent(QShowEvent*) {
    tellSpeedPage();
}

void Inspector::hideEvent(QHideEvent*) {
    tellSpeedPage();
}

void Inspector::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), theme::pane);
    theme::drawHairline(painter, rect(), theme::Side::left);
    theme::drawHairline(painter, QRectF(0, 0, width(), tabsHeight), theme::Side::bottom);
}

} // namespace flowtide
