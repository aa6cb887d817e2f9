#include "ui/theme/Motion.h"

namespace vellumine {

Motion::Motion(QObject* parent)
    : QObject(parent)
{
}

void Motion::setReduced(bool isReduced)
{
    if (isReduced != m_isReduced) {
        m_isReduced = isReduced;
        Q_EMIT changed();
    }
}

} // namespace vellumine
