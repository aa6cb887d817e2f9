#include "ui/accessibility/Scene.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QQuickStyle>

namespace vellumine::test {
namespace {

QUrl sceneUrl(const char* name)
{
    return QUrl::fromLocalFile(QStringLiteral(VELLUMINE_SOURCE_FOLDER "/tests/ui/gallery/%1.qml")
                                   .arg(QLatin1String(name)));
}

void addElements(QAccessibleInterface* parent, QList<QAccessibleInterface*>& elements)
{
    for (int index = 0; index < parent->childCount(); ++index) {
        QAccessibleInterface* child = parent->child(index);
        if (child == nullptr || child->state().invisible) {
            continue;
        }
        elements.append(child);
        addElements(child, elements);
    }
}

} // namespace

Scene::Scene(const char* name)
{
    QQuickStyle::setStyle(QStringLiteral("Basic"));
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    QAccessible::setActive(true);
    QQmlComponent component(&m_engine, sceneUrl(name));
    m_root.reset(component.create());
    m_window = qobject_cast<QQuickWindow*>(m_root.get());
    if (m_window == nullptr) {
        qFatal("%s", qPrintable(component.errorString()));
    }
    m_window->show();
    m_window->requestActivate();
    QCoreApplication::processEvents();
    (void)m_window->grabWindow(); // lays out what is seen
    QCoreApplication::processEvents();
}

QObject& Scene::item(const char* name) const
{
    auto* found = m_window->findChild<QObject*>(QLatin1String(name));
    if (found == nullptr) {
        qFatal("there is no %s", name);
    }
    return *found;
}

QList<QAccessibleInterface*> Scene::elements() const
{
    QList<QAccessibleInterface*> found;
    addElements(QAccessible::queryAccessibleInterface(m_window), found);
    return found;
}

QAccessibleInterface* Scene::element(QAccessible::Role role, const QString& name) const
{
    const QList<QAccessibleInterface*> all = elements();
    for (QAccessibleInterface* candidate : all) {
        if (candidate->role() == role && candidate->text(QAccessible::Name) == name) {
            return candidate;
        }
    }
    return nullptr;
}

} // namespace vellumine::test
