// Where a tracked subject is seen in a picture.
#pragma once

namespace flowtide {

/// A box in fractions of the displayed frame, its origin the frame's top left corner.
struct SubjectBox {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    constexpr double maxX() const { return x + width; }
    constexpr double maxY() const { return y + height; }
    constexpr double midX() const { return x + width / 2; }
    constexpr double midY() const { return y + height / 2; }
    constexpr double area() const { return width * height; }
    friend bool operator==(const SubjectBox&, const SubjectBox&) = default;
};

/// Of a box's width and height: a box that isn't larger is never taken for a subject.
constexpr double smallestSubject = 0.005;

} // namespace flowtide
