#pragma once

#include "MarkdownEngine/Configuration/DiagramImageRenderer.h"
#include "MarkdownEngine/Configuration/EmbeddedImageProvider.h"
#include "MarkdownEngine/Configuration/LatexRenderer.h"
#include "MarkdownEngine/Configuration/MarkdownEditorBus.h"
#include "MarkdownEngine/Configuration/SyntaxHighlighter.h"
#include "MarkdownEngine/Configuration/WikiLinkResolver.h"

#include <functional>
#include <memory>

class QObject;

namespace velmo::markdown {

// The editor's only ways back into the application. Shared pointers: a configuration is a
// value copied freely, while a renderer keeps its caches.
struct MarkdownEditorServices {
    std::shared_ptr<WikiLinkResolver> wikiLinks; // may be absent
    std::shared_ptr<EmbeddedImageProvider> images = std::make_shared<NoOpEmbeddedImageProvider>();
    std::shared_ptr<SyntaxHighlighter> syntaxHighlighter = std::make_shared<PlainTextSyntaxHighlighter>();
    std::shared_ptr<LatexRenderer> latex = std::make_shared<NoOpLatexRenderer>();
    std::shared_ptr<DiagramImageRenderer> diagrams = std::make_shared<NoOpDiagramImageRenderer>();
    MarkdownEditorBus bus = MarkdownEditorBus::defaultBus();
    // After an edit: the text view, the edited range's location and length.
    std::function<void(QObject* textView, int location, int length)> didEdit;
};

}
