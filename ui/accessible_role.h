// What widgets that we paint ourselves are to the accessibility tree.
#pragma once

#include <QAccessible>
#include <QWidget>

namespace flowtide {

/// The role of a plain widget; its name and description are the widget's own (setAccessibleName()). Widgets that derive
/// from Qt's own controls have their roles already.
void setAccessibleRole(QWidget& widget, QAccessible::Role role);

/// Tells of a name only where it is another one; Qt tells of every name that is set.
void setSpokenName(QWidget& widget, const QString& name);

/// To be called once, before the first widget is shown.
void installAccessibleRoles();

} // namespace flowtide
