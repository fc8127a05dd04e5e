#include "MarkdownEngine/Configuration/MarkdownEditorNotifications.h"

namespace velmo::markdown {

MarkdownEditorNotifications& MarkdownEditorNotifications::shared()
{
    static MarkdownEditorNotifications center;
    return center;
}

}
