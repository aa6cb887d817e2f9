#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QTimer>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

#include <chrono>
#include <utility>

namespace vellumine {

class ProcessingModel;

/// What the drop zone shows of the batches, and what it hands to them.
class ProcessingPresenter : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The program makes the one presenter of its batches.")
    Q_PROPERTY(bool isProcessing READ isProcessing NOTIFY isProcessingChanged)
    Q_PROPERTY(QString symbol READ symbol NOTIFY isProcessingChanged)
    Q_PROPERTY(QString statusText READ statusText NOTIFY statusTextChanged)
    Q_PROPERTY(QString hintText READ hintText CONSTANT)
    /// Files are being converted; how far, from 0 to 1, and the same in words.
    Q_PROPERTY(bool hasProgress READ hasProgress NOTIFY progressChanged)
    Q_PROPERTY(double progress READ progress NOTIFY progressChanged)
    Q_PROPERTY(QString progressText READ progressText NOTIFY progressChanged)
    /// The batch can be stopped: it runs, and stop() would still change that.
    Q_PROPERTY(bool canStop READ canStop NOTIFY canStopChanged)
    /// Stopping is offered: files are being converted, or were looked for longer than a blink.
    Q_PROPERTY(bool offersStop READ offersStop NOTIFY offersStopChanged)
    /// What stop() would do.
    Q_PROPERTY(QString stopText READ stopText NOTIFY canStopChanged)
    /// The filters of the file dialog, the pictures first.
    Q_PROPERTY(QStringList nameFilters READ nameFilters CONSTANT)

public:
    /// How long a scan lasts that ends before anybody would stop it.
    static constexpr std::chrono::milliseconds shortScanTime { 400 };

    /// The model has to outlive the presenter.
    explicit ProcessingPresenter(ProcessingModel& model,
        std::chrono::milliseconds shortScan = shortScanTime, QObject* parent = nullptr);

    [[nodiscard]] bool isProcessing() const;
    [[nodiscard]] QString symbol() const;
    [[nodiscard]] QString statusText() const;
    [[nodiscard]] static QString hintText();
    [[nodiscard]] bool hasProgress() const;
    [[nodiscard]] double progress() const;
    [[nodiscard]] QString progressText() const;
    [[nodiscard]] bool canStop() const;
    [[nodiscard]] bool offersStop() const { return m_offersStop; }
    [[nodiscard]] QString stopText() const;
    [[nodiscard]] static QStringList nameFilters();

    /// Hands what the window takes of the URLs to the model, once, even if that is nothing.
    Q_INVOKABLE void loadDroppedFiles(const QList<QUrl>& urls);
    /// The same with the files that were copied elsewhere; without any nothing happens.
    Q_INVOKABLE void paste();
    /// Begins no further file of the batch; asked for again, gives up those in flight. While images
    /// are looked for none is.
    Q_INVOKABLE void stop();

Q_SIGNALS:
    void isProcessingChanged();
    void statusTextChanged();
    void progressChanged();
    void canStopChanged();
    void offersStopChanged();

private:
    [[nodiscard]] bool isScanning() const;
    void followScan();
    void updateStop();
    void setOffersStop(bool offers);

    ProcessingModel& m_model;
    enum class Stopping { no, afterThoseInFlight, atOnce };
    Stopping m_stopping = Stopping::no;
    std::pair<bool, QString> m_lastStop { false, stopText() }; ///< what was told last
    QTimer m_shortScan; ///< runs while the scan may be one
    bool m_offersStop = false;
};

} // namespace vellumine
