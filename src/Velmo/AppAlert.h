#pragma once

#include <QString>
#include <QUuid>
#include <optional>

namespace velmo::app {

// The loud channel: a modal alert. Every alert has a fresh id, so two equal messages are two alerts.
struct AppAlert {
    QUuid id = QUuid::createUuid();
    QString title;
    std::optional<QString> message;
};

}
