// Placing controls on the fixed geometry, in twips as the windows were laid
// out (15 to the pixel). One set for every window, so a change of how twips
// become pixels happens in one place.
#pragma once

#include <QLabel>
#include <QPushButton>
#include <QWidget>

#include "gui/Start.h"

namespace ct {

inline void Place(QWidget* w, int left, int top, int width, int height) {
    w->setGeometry(Tw(left), Tw(top), Tw(width), Tw(height));
}
inline void SetLeft(QWidget* w, int left) { w->move(Tw(left), w->y()); }
inline void SetWidth(QWidget* w, int width) { w->resize(Tw(width), w->height()); }

// A caption or value, top-aligned as the window system drew its labels.
inline QLabel* Label(QWidget* parent, int left, int top, int width, int height = 255,
                     Qt::Alignment align = Qt::AlignLeft) {
    auto* l = new QLabel(parent);
    Place(l, left, top, width, height);
    l->setAlignment(align | Qt::AlignTop);
    return l;
}

inline QPushButton* Button(QWidget* parent, int left, int top, int width, int height) {
    auto* b = new QPushButton(parent);
    Place(b, left, top, width, height);
    return b;
}

// The bold face of default buttons.
inline void Bold(QWidget* w) {
    QFont f = w->font();
    f.setBold(true);
    w->setFont(f);
}

}  // namespace ct
