#pragma once

#include <QFuture>
#include <QFutureWatcher>
#include <QObject>

#include <utility>

namespace vellumine {

/// Hands the future's result to the function on the context's thread, always through its event
/// loop; never when the context is gone. (A continuation would run inside the call that adds it
/// when the future has ended already, and a series of quick ones would nest without bound.)
template <typename T, typename Function>
void deliver(const QFuture<T>& future, QObject* context, Function function)
{
    auto* watcher = new QFutureWatcher<T>(context);
    QObject::connect(
        watcher, &QFutureWatcherBase::finished, context, [watcher, function = std::move(function)] {
            watcher->deleteLater();
            function(watcher->result());
        });
    watcher->setFuture(future);
}

} // namespace vellumine
