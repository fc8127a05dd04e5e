#pragma once

#include "Velmo/EditorTextSurface.h"

#include <QObject>
#include <QPointer>

namespace velmo::app {

// Weak references to the live editor; any of them may be empty, and every operation of the
// application state works then too.
struct EditorHandle {
    QPointer<QObject> view;
    QPointer<QObject> coordinator;
    QPointer<QObject> textView;

    EditorTextSurface* surface() const { return dynamic_cast<EditorTextSurface*>(textView.data()); }
    bool isComposing() const
    {
        const EditorTextSurface* s = surface();
        return s && s->isComposing();
    }
};

}
