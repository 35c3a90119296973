#include "ui/accessible_role.h"

#include "ui/accessible_items.h"

#include <QAccessibleWidget>
#include <QVariant>

namespace flowtide {

namespace {

constexpr const char* roleProperty = "flowtide.accessibleRole";

QAccessibleInterface* interfaceOf(const QString&, QObject* object) {
    auto* widget = qobject_cast<QWidget*>(object);
    if (!widget) return nullptr;
    if (QAccessibleInterface* made = makeItemsInterface(*widget)) return made;
    const QVariant role = widget->property(roleProperty);
    if (!role.isValid()) return nullptr;
    // Owned by Qt's cache of interfaces.
    return new QAccessibleWidget(widget, static_cast<QAccessible::Role>(role.toInt()));
}

} // namespace

void setAccessibleRole(QWidget& widget, QAccessible::Role role) {
    widget.setProperty(roleProperty, static_cast<int>(role));
}

void setSpokenName(QWidget& widget, const QString& name) {
    if (widget.accessibleName() != name) widget.setAccessibleName(name);
}

void installAccessibleRoles() {
    QAccessible::installFactory(interfaceOf);
}

} // namespace flowtide
