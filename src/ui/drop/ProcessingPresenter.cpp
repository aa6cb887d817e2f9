#include "ui/drop/ProcessingPresenter.h"

#include "batch/ProcessingModel.h"
#include "ui/drop/DroppedUrls.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

namespace vellumine {

ProcessingPresenter::ProcessingPresenter(
    ProcessingModel& model, std::chrono::milliseconds shortScan, QObject* parent)
    : QObject(parent)
    , m_model(model)
    , m_shortScan(this)
{
    m_shortScan.setSingleShot(true);
    m_shortScan.setInterval(shortScan);
    connect(&m_shortScan, &QTimer::timeout, this, &ProcessingPresenter::updateStop);
    connect(
        &model, &ProcessingModel::statusTextChanged, this, &ProcessingPresenter::statusTextChanged);
    connect(&model, &ProcessingModel::isProcessingChanged, this, [this] {
        Q_EMIT isProcessingChanged();
        followScan();
    });
    connect(&model, &ProcessingModel::progressChanged, this, [this] {
        Q_EMIT progressChanged();
        followScan();
    });
    followScan();
}

bool ProcessingPresenter::isProcessing() const
{
    return m_model.isProcessing();
}

QString ProcessingPresenter::symbol() const
{
    return isProcessing() ? QStringLiteral("arrow.triangle.2.circlepath")
                          : QStringLiteral("square.and.arrow.down");
}

QString ProcessingPresenter::statusText() const
{
    return m_model.statusText();
}

QString ProcessingPresenter::hintText()
{
    return tr("Drop image files or folders here, or onto the Vellumine Dock icon.");
}

bool ProcessingPresenter::hasProgress() const
{
    return m_model.totalCount() > 0;
}

double ProcessingPresenter::progress() const
{
    return hasProgress()
        ? static_cast<double>(m_model.finishedCount()) / static_cast<double>(m_model.totalCount())
        : 0;
}

QString ProcessingPresenter::progressText() const
{
    return tr("%1 of %2").arg(m_model.finishedCount()).arg(m_model.totalCount());
}

bool ProcessingPresenter::canStop() const
{
    return isProcessing() && m_stopping != Stopping::atOnce;
}

QString ProcessingPresenter::stopText() const
{
    return m_stopping == Stopping::no ? tr("Stop") : tr("Stop now");
}

QStringList ProcessingPresenter::nameFilters()
{
    return {
        //: The patterns in brackets stay as they are.
        tr("Images (%1)")
            .arg(QStringLiteral("*.jpg *.jpeg *.png *.gif *.tif *.tiff *.bmp *.heic *.heif *.webp "
                                "*.JPG *.JPEG *.PNG *.GIF *.TIF *.TIFF *.BMP *.HEIC *.HEIF "
                                "*.WEBP")),
        tr("All files (%1)").arg(QLatin1Char('*')),
    };
}

void ProcessingPresenter::loadDroppedFiles(const QList<QUrl>& urls)
{
    m_model.process(acceptedUrls(urls));
}

void ProcessingPresenter::paste()
{
    const QMimeData* copied = QGuiApplication::clipboard()->mimeData();
    if (copied == nullptr) {
        return;
    }
    const QList<QUrl> urls = fileUrls(*copied);
    if (!urls.isEmpty()) {
        loadDroppedFiles(urls);
    }
}

void ProcessingPresenter::stop()
{
    if (!canStop()) {
        return;
    }
    if (m_stopping == Stopping::no) {
        m_stopping = isScanning() ? Stopping::atOnce : Stopping::afterThoseInFlight;
        m_model.stop();
    } else {
        m_stopping = Stopping::atOnce;
        m_model.interrupt();
    }
    updateStop();
}

bool ProcessingPresenter::isScanning() const
{
    return isProcessing() && !hasProgress();
}

void ProcessingPresenter::followScan()
{
    if (!isScanning()) {
        m_shortScan.stop();
    } else if (!m_shortScan.isActive()) {
        m_shortScan.start();
    }
    updateStop();
}

void ProcessingPresenter::updateStop()
{
    // So it is between two batches as well, where a drop of meanwhile starts the next one.
    if (!isProcessing() && !hasProgress()) {
        m_stopping = Stopping::no;
    }
    if (std::pair stop(canStop(), stopText()); stop != m_lastStop) {
        m_lastStop = std::move(stop);
        Q_EMIT canStopChanged();
    }
    setOffersStop(hasProgress() || (isScanning() && !m_shortScan.isActive()));
}

void ProcessingPresenter::setOffersStop(bool offers)
{
    if (m_offersStop != offers) {
        m_offersStop = offers;
        Q_EMIT offersStopChanged();
    }
}

} // namespace vellumine
