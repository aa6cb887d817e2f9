// Tells ThreadSanitizer what it cannot see: Debian's Qt is not instrumented and locks with futexes
// of its own. (What Qt allocates and frees itself is left out of the reports by an option of the
// preset.) What starts on a thread pool happens after the call of start(), and what a thread
// prepared for another one's event loop happens before it runs there. Nothing is suppressed: the
// two calls that our code makes into Qt are wrapped, as these definitions come before the
// library's.

#include <QMetaObject>
#include <QRunnable>
#include <QThreadPool>

#include <dlfcn.h>
#include <sanitizer/tsan_interface.h>

#include <memory>
#include <utility>

namespace {

template <typename Function> Function* next(const char* symbol)
{
    // What the linker knows by that name has that type.
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, symbol));
}

class SeenRunnable final : public QRunnable {
public:
    explicit SeenRunnable(QRunnable* runnable)
        : m_runnable(runnable)
    {
        __tsan_release(this);
    }

    void run() override
    {
        __tsan_acquire(this);
        const std::unique_ptr<QRunnable> owner(m_runnable->autoDelete() ? m_runnable : nullptr);
        m_runnable->run();
    }

private:
    QRunnable* m_runnable;
};

/// A slot in another's clothes. Qt owns it through its reference count.
class SeenSlot final : public QtPrivate::QSlotObjectBase {
public:
    explicit SeenSlot(QtPrivate::QSlotObjectBase* slot)
        : QSlotObjectBase(&SeenSlot::act)
        , m_slot(slot)
    {
        __tsan_release(this);
    }

private:
    static void act(
        int which, QSlotObjectBase* self, QObject* receiver, void** arguments, bool* answer)
    {
        __tsan_acquire(self);
        auto* seen = static_cast<SeenSlot*>(self);
        if (which == Destroy) {
            seen->m_slot->destroyIfLastRef();
            delete seen;
        } else if (which == Call) {
            seen->m_slot->call(receiver, arguments);
            __tsan_release(self); // the reference count tells whoever lets go of it last
        } else {
            *answer = false;
        }
    }

    QtPrivate::QSlotObjectBase* m_slot;
};

} // namespace

void QThreadPool::start(QRunnable* runnable, int priority)
{
    using Start = void(QThreadPool*, QRunnable*, int);
    static auto* const start = next<Start>("_ZN11QThreadPool5startEP9QRunnablei");
    start(this, new SeenRunnable(runnable), priority);
}

#if QT_VERSION < QT_VERSION_CHECK(6, 7, 0)

bool QMetaObject::invokeMethodImpl(
    QObject* object, QtPrivate::QSlotObjectBase* slot, Qt::ConnectionType type, void* ret)
{
    using Invoke = bool(QObject*, QtPrivate::QSlotObjectBase*, Qt::ConnectionType, void*);
    static auto* const invoke = next<Invoke>("_ZN11QMetaObject16invokeMethodImplEP7QObjectPN9QtPr"
                                             "ivate15QSlotObjectBaseEN2Qt14ConnectionT"
                                             "ypeEPv");
    return invoke(object, new SeenSlot(slot), type, ret);
}

#else

bool QMetaObject::invokeMethodImpl(QObject* object, QtPrivate::QSlotObjectBase* slot,
    Qt::ConnectionType type, qsizetype count, const void* const* values, const char* const* names,
    const QtPrivate::QMetaTypeInterface* const* types)
{
    using Invoke = bool(QObject*, QtPrivate::QSlotObjectBase*, Qt::ConnectionType, qsizetype,
        const void* const*, const char* const*, const QtPrivate::QMetaTypeInterface* const*);
    static auto* const invoke = next<Invoke>("_ZN11QMetaObject16invokeMethodImplEP7QObjectPN9QtPr"
                                             "ivate15QSlotObjectBaseEN2Qt14ConnectionTypeExPKPKv"
                                             "PKPKcPKPKNS2_18QMetaTypeInterfaceE");
    return invoke(object, new SeenSlot(slot), type, count, values, names, types);
}

#endif
