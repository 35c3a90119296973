#include "ui/viewer/surface_accessible.h"

#include "ui/viewer/video_surface.h"

#include <QAccessible>
#include <QAccessibleWidget>

namespace flowtide {

namespace {

class SurfaceAccessible final : public QAccessibleWidget {
public:
    explicit SurfaceAccessible(VideoSurface& surface)
        : QAccessibleWidget(&surface, QAccessible::Graphic)
        , surface_(surface) {}

    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Value || kind == QAccessible::Description ? surface_.spokenValue()
                                                                              : QAccessibleWidget::text(kind);
    }

private:
    VideoSurface& surface_;
};

QAccessibleInterface* made(const QString&, QObject* object) {
    auto* surface = qobject_cast<VideoSurface*>(object);
    // Owned by Qt's cache of interfaces from here on.
    return surface ? new SurfaceAccessible(*surface) : nullptr;
}

} // namespace

void installSurfaceAccessible() {
    QAccessible::installFactory(made);
}

void announceSurfaceValue(VideoSurface& surface) {
    QAccessibleValueChangeEvent event(&surface, surface.spokenValue());
    QAccessible::updateAccessibility(&event);
}

} // namespace flowtide
