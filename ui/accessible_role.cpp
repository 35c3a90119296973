#include "ui/accessible_role.h"

#include <QAccessibleWidget>
#include <QVariant>

namespace flowtide {

namespace {

constexpr const char* roleProperty = "flowtide.accessibleRole";

QAccessibleInterface* interfaceOf(const QString&, QObject* object) {
    auto* widget = qobject_cast<QWidget*>(object);
    if (!widget) return nullptr;
    const QVariant role = widget->property(roleProperty);
    if (!role.isValid()) return nullptr;
    // Owned by Qt's cache of interfaces.
    return new QAccessibleWidget(widget, static_cast<QAccessible::Role>(role.toInt()));
}

} // namespace

void setAccessibleRole(QWidget& widget, QAccessible::Role role) {
    widget.setProperty(roleProperty, static_cast<int>(role));
}

void installAccessibleRoles() {
    QAccessible::installFactory(interfaceOf);
}

} // namespace flowtide
