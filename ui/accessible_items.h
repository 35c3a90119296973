// What a widget paints and people can reach one by one: children in the accessibility tree that are no widgets.
#pragma once

#include "core/uuid.h"

#include <QAccessible>
#include <QObject>
#include <QPointF>
#include <QRectF>
#include <QString>
#include <QWidget>
#include <functional>
#include <map>
#include <optional>
#include <vector>

namespace flowtide {

struct AccessibleValue {
    double now = 0;
    double lowest = 0;
    double highest = 0;
    double step = 0; ///< the smallest that makes sense
};

struct AccessibleItem {
    QString name; ///< what it is, where, and how it is
    QRectF place; ///< pixels of the widget; empty when it is out of sight
    bool isSelected = false;
    std::optional<AccessibleValue> value;
};

/// A widget that tells of what it paints.
class AccessibleSource {
public:
    virtual ~AccessibleSource() = default;
    /// In order.
    virtual std::vector<Uuid> itemIds() const = 0;
    /// `index`: where the id was when itemIds() was last asked. Nothing once it is gone.
    virtual std::optional<AccessibleItem> accessibleItem(const Uuid& id, std::size_t index) const = 0;
    /// The one that the widget's keys work on.
    virtual std::optional<Uuid> currentItem() const = 0;
    virtual std::optional<Uuid> itemUnder(QPointF place) const = 0;
    /// Of the widget as a whole.
    virtual QString itemSummary() const = 0;
    /// What a click on it does.
    virtual void pressItem(const Uuid& id) = 0;
    virtual void setItemValue(const Uuid&, double) {}
};

/// The bridge between such a widget and the tree, to be the widget's last member. Interfaces are made when they are
/// asked for; as long as no assistive technology is active, nothing is asked of the source and nobody is told anything.
class AccessibleItems final : public QObject, private QAccessible::ActivationObserver {
    Q_OBJECT

public:
    /// `role`: of the widget itself.
    AccessibleItems(QWidget& widget, AccessibleSource& source, QAccessible::Role role);
    ~AccessibleItems() override;

    /// Where all that is told goes.
    std::function<void(QAccessibleEvent*)> onEvent = QAccessible::updateAccessibility;

    // The widget says what has changed:
    /// Items may have come, gone or changed.
    void changed();
    /// Another item is current.
    void currentChanged();
    /// The widget has got the focus.
    void focused();

    // The tree asks:
    static AccessibleItems* of(const QWidget& widget);
    QWidget& widget() const { return widget_; }
    AccessibleSource& source() const { return source_; }
    QAccessible::Role role() const { return role_; }
    int count() const;
    int indexOf(const Uuid& id) const; ///< -1: it is gone
    std::optional<AccessibleItem> item(const Uuid& id) const;
    QAccessibleInterface* interfaceOf(const Uuid& id);
    QAccessibleInterface* interfaceAt(int index); ///< null beyond the last

private:
    void accessibilityActiveChanged(bool active) override { isListenedTo_ = active; }
    void read() const;
    void tellOfMembers();
    void tellOfCurrent();
    void tell(const Uuid& id, QAccessible::Event event);

    QWidget& widget_;
    AccessibleSource& source_;
    QAccessible::Role role_;
    bool isListenedTo_ = QAccessible::isActive();
    mutable std::vector<Uuid> ids_;
    mutable std::map<Uuid, int> indices_;
    mutable bool isStale_ = true;            ///< both
    std::map<Uuid, QAccessible::Id> made_;   ///< the interfaces, which Qt owns
    std::optional<Uuid> current_;            ///< as last told
    std::optional<AccessibleItem> lastTold_; ///< what was said of it
};

/// For the factory of interfaces; null for widgets without items.
QAccessibleInterface* makeItemsInterface(QWidget& widget);

} // namespace flowtide
