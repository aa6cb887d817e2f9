#include "ui/fakes/SyntheticDrag.h"

#include <QCoreApplication>
#include <QDragEnterEvent>
#include <QQuickWindow>

namespace vellumine {
namespace {

constexpr Qt::DropActions offered = Qt::CopyAction | Qt::MoveAction | Qt::LinkAction;

} // namespace

bool SyntheticDrag::enterWithUris(QQuickItem* item, qreal x, qreal y, const QStringList& uris)
{
    m_data = std::make_unique<QMimeData>();
    m_data->setData(
        QStringLiteral("text/uri-list"), uris.join(QStringLiteral("\r\n")).toLatin1() + "\r\n");
    return enter(item, x, y);
}

bool SyntheticDrag::enterWithText(QQuickItem* item, qreal x, qreal y, const QString& text)
{
    m_data = std::make_unique<QMimeData>();
    m_data->setText(text);
    return enter(item, x, y);
}

bool SyntheticDrag::enter(QQuickItem* item, qreal x, qreal y)
{
    QDragEnterEvent event(item->mapToScene({ x, y }).toPoint(), offered, m_data.get(),
        Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(item->window(), &event);
    return event.isAccepted();
}

bool SyntheticDrag::move(QQuickItem* item, qreal x, qreal y)
{
    QDragMoveEvent event(item->mapToScene({ x, y }).toPoint(), offered, m_data.get(),
        Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(item->window(), &event);
    return event.isAccepted();
}

bool SyntheticDrag::drop(QQuickItem* item, qreal x, qreal y)
{
    QDropEvent event(
        item->mapToScene({ x, y }), offered, m_data.get(), Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(item->window(), &event);
    return event.isAccepted();
}

void SyntheticDrag::leave(QQuickItem* item)
{
    QDragLeaveEvent event;
    QCoreApplication::sendEvent(item->window(), &event);
}

} // namespace vellumine
