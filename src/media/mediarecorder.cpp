#include "mediarecorder.h"

#include "h264parameters.h"
#include "safefilename.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QPointer>
#include <QThread>
#include <QtDebug>

#include <cstring>
#include <utility>

extern "C" {
#include <libavutil/mathematics.h>
}

namespace {

constexpr AVRational Microseconds{1, 1000000};

// Video packets dropped while a recording waited for its first key frame, for all recorders.
std::atomic<qint64> droppedBeforeKeyFrame{0};

void freeAll(QList<AVPacket *> &queue)
{
    for (AVPacket *packet : queue)
        av_packet_free(&packet);
    queue.clear();
}

// A copy of a stream's description taken under the recorder's lock; null when none was given.
struct Described
{
    Described(std::mutex &mutex, const AVCodecParameters *source)
    {
        std::unique_lock lock(mutex);
        if (source && (parameters = avcodec_parameters_alloc()))
            avcodec_parameters_copy(parameters, source);
    }
    ~Described() { avcodec_parameters_free(&parameters); }
    AVCodecParameters *parameters = nullptr;
};

} // namespace

MediaRecorder::MediaRecorder(QObject *parent)
    : QObject(parent)
{
}

MediaRecorder::~MediaRecorder()
{
    requestStop();
    // Reached at once after finishAndDelete(); a recorder deleted directly finishes its file first.
    if (m_thread) {
        m_thread->wait();
        delete m_thread;
    }
    freeAll(m_videoQueue);
    freeAll(m_audioQueue);
    avcodec_parameters_free(&m_videoParameters);
    avcodec_parameters_free(&m_audioParameters);
}

void MediaRecorder::finishAndDelete(int waitMs)
{
    requestStop();
    setParent(nullptr);
    if (!m_thread || m_thread->wait(QDeadlineTimer(waitMs))) {
        delete this;
        return;
    }
    // A disk that stalls must not hang the caller: the file is finished on its own thread.
    qWarning().noquote() << "MediaRecorder: still writing" << filePath() << "after" << waitMs << "ms";
    connect(m_thread, &QThread::finished, this, &QObject::deleteLater);
    if (m_thread->isFinished())
        delete this;
}

void MediaRecorder::requestStop()
{
    std::unique_lock lock(m_mutex);
    m_stopped = true;
    m_startQueued = false;
    m_wakeUp.notify_all();
}

void MediaRecorder::setStreams(bool video, bool audio)
{
    std::unique_lock lock(m_mutex);
    m_videoEnabled = video;
    m_audioEnabled = audio;
    // A stream that stops counting must not keep the other one waiting for it.
    m_wakeUp.notify_all();
}

void MediaRecorder::openVideoStream(const AVCodecParameters *stream)
{
    std::unique_lock lock(m_mutex);
    keep(m_videoParameters, stream);
}

void MediaRecorder::openAudioStream(const AVCodecParameters *stream)
{
    std::unique_lock lock(m_mutex);
    keep(m_audioParameters, stream);
}

void MediaRecorder::setOutput(const QString &folder, const QString &nickname, const QString &serial)
{
    std::unique_lock lock(m_mutex);
    m_folder = folder;
    m_nickname = nickname;
    m_serial = serial;
}

QString MediaRecorder::fileName(const QString &nickname, const QString &serial, const QDateTime &time)
{
    return SafeFileName::make(nickname + "_" + serial, "_" + time.toString("yyyyMMdd_hhmmss_zzz") + ".mkv");
}

QString MediaRecorder::filePath() const
{
    std::unique_lock lock(m_mutex);
    return m_filePath;
}

void MediaRecorder::keep(AVCodecParameters *&parameters, const AVCodecParameters *stream)
{
    if (!stream) {
        avcodec_parameters_free(&parameters);
        return;
    }
    if (!parameters)
        parameters = avcodec_parameters_alloc();
    if (parameters && avcodec_parameters_copy(parameters, stream) < 0)
        avcodec_parameters_free(&parameters);
}

void MediaRecorder::enqueueVideoPacket(const AVPacket *packet)
{
    std::unique_lock lock(m_mutex);
    if (m_stopped || !packet)
        return;
    if (AVPacket *copy = av_packet_clone(packet)) {
        m_videoQueue.append(copy);
        m_wakeUp.notify_all();
    }
}

void MediaRecorder::enqueueAudioPacket(const AVPacket *packet)
{
    std::unique_lock lock(m_mutex);
    if (!packet)
        return;
    // The Opus header is what a Matroska file needs as the track's private data. It comes once,
    // when the stream starts, so it is kept whether a recording runs or not.
    AVCodecParameters *audio = m_audioParameters;
    if (packet->pts == AV_NOPTS_VALUE && audio && !audio->extradata && packet->size > 0) {
        audio->extradata = static_cast<uint8_t *>(av_mallocz(size_t(packet->size) + AV_INPUT_BUFFER_PADDING_SIZE));
        if (audio->extradata) {
            std::memcpy(audio->extradata, packet->data, size_t(packet->size));
            audio->extradata_size = packet->size;
        }
    }
    if (m_stopped || !m_audioEnabled)
        return;
    if (AVPacket *copy = av_packet_clone(packet)) {
        m_audioQueue.append(copy);
        m_wakeUp.notify_all();
    }
}

bool MediaRecorder::start()
{
    if (m_thread && m_thread->isRunning()) {
        if (!m_stopped) {
            report(tr("Record Failed"), MessageKind::Error);
            return false;
        }
        // The last file is still being finished: the new recording follows it.
        m_startQueued = true;
        emit isRecordingChanged();
        return true;
    }
    delete m_thread;
    {
        // From now on packets are kept, and a stop before the file opens is not lost.
        std::unique_lock lock(m_mutex);
        m_stopped = false;
    }
    m_thread = new QThread;
    m_thread->setObjectName("VideoRecorderThread");
    connect(m_thread, &QThread::started, this, [this] { record(); }, Qt::DirectConnection);
    connect(m_thread, &QThread::finished, this, [this, thread = QPointer<QThread>(m_thread)] {
        // A recording started after this one had ended runs on a thread of its own already.
        if (thread != m_thread)
            return;
        m_thread->wait();
        if (std::exchange(m_startQueued, false))
            start();
    });
    m_thread->start(QThread::InheritPriority);
    return true;
}

void MediaRecorder::report(const QString &text, MessageKind::Kind kind)
{
    emit message(text, kind, MessageKind::timeoutMs(kind));
}

void MediaRecorder::stop()
{
    requestStop();
    report(tr("Stop Recording"), MessageKind::Info);
}

void MediaRecorder::record()
{
    {
        std::unique_lock lock(m_mutex);
        if (!openOutput()) {
            m_stopped = true;
            freeAll(m_videoQueue);
            freeAll(m_audioQueue);
            lock.unlock();
            report(tr("Record Failed"), MessageKind::Error);
            emit isRecordingChanged();
            m_thread->quit();
            return;
        }
        m_keyFrameSeen = false;
        m_timeline.reset();
        m_timeline.setNominalFrameDuration(RecordingTimeline::DefaultFrameDuration);
        m_timeline.setNominalAudioDuration(RecordingTimeline::DefaultAudioDuration);
    }
    emit isRecordingChanged();
    report(tr("Record Started"), MessageKind::Success);
    // Asked only now that packets are taken, so the new configuration packet cannot be missed.
    emit resetVideoRequested();

    for (;;) {
        std::unique_lock lock(m_mutex);
        const auto idle = [this] {
            return !m_stopped && (m_heldVideo || !m_videoEnabled || m_videoQueue.isEmpty())
                && (m_heldAudio || !m_audioEnabled || m_audioQueue.isEmpty());
        };
        while (idle())
            m_wakeUp.wait(lock);
        // A stream switched off mid-recording still has its queue drained.
        if (!m_heldVideo && !m_videoQueue.isEmpty() && (m_videoEnabled || m_stopped))
            m_heldVideo = m_videoQueue.takeFirst();
        if (!m_heldAudio && !m_audioQueue.isEmpty() && (m_audioEnabled || m_stopped))
            m_heldAudio = m_audioQueue.takeFirst();
        const bool stopping = m_stopped;
        if (stopping && !m_heldVideo && !m_heldAudio)
            break;
        lock.unlock();
        if (m_heldVideo)
            processVideo(m_heldVideo, stopping);
        if (m_heldAudio)
            processAudio(m_heldAudio, stopping);
    }
    finish();
}

bool MediaRecorder::openOutput()
{
    if (!QDir().mkpath(m_folder))
        return false;
    m_filePath = QDir(m_folder).filePath(fileName(m_nickname, m_serial, QDateTime::currentDateTime()));
    return m_file.open(m_filePath);
}

bool MediaRecorder::addVideoStream(const AVPacket *config)
{
    if (!config || config->size <= 0)
        return false;
    AVRational rate = H264Parameters::frameRate(config->data, config->size);
    if (rate.num < 1 || rate.den < 1)
        rate = AVRational{30, 1};
    const Described described(m_mutex, m_videoParameters);
    if (!m_file.addVideo(described.parameters, config, rate))
        return false;
    m_timeline.setNominalFrameDuration(av_rescale_q(1, av_inv_q(rate), Microseconds));
    return true;
}

bool MediaRecorder::addAudioStream()
{
    const Described described(m_mutex, m_audioParameters);
    if (!m_file.addAudio(described.parameters))
        return false;
    const int frameSize = described.parameters ? described.parameters->frame_size : 0;
    const int sourceRate = described.parameters ? described.parameters->sample_rate : 0;
    m_timeline.setNominalAudioDuration(frameSize > 0 && sourceRate > 0 ? qint64(frameSize) * 1000000 / sourceRate : 0);
    return true;
}

bool MediaRecorder::chooseBase(bool stopping)
{
    const bool video = m_heldVideo && m_heldVideo->pts != AV_NOPTS_VALUE && m_keyFrameSeen;
    const bool audio = m_heldAudio && m_heldAudio->pts != AV_NOPTS_VALUE && m_file.hasAudio();
    bool videoEnabled = false;
    bool audioEnabled = false;
    {
        std::unique_lock lock(m_mutex);
        videoEnabled = m_videoEnabled;
        audioEnabled = m_audioEnabled;
    }
    if (video && audio && videoEnabled && audioEnabled)
        m_timeline.setBase(qMin(m_heldVideo->pts, m_heldAudio->pts));
    else if (video && (!audioEnabled || stopping))
        m_timeline.setBase(m_heldVideo->pts);
    else if (audio && (!videoEnabled || stopping))
        m_timeline.setBase(m_heldAudio->pts);
    return m_timeline.hasBase();
}

void MediaRecorder::processVideo(AVPacket *packet, bool stopping)
{
    if (packet->pts == AV_NOPTS_VALUE) {
        if (!m_file.headerWritten() && addVideoStream(packet)) {
            bool audioEnabled = false;
            {
                std::unique_lock lock(m_mutex);
                audioEnabled = m_audioEnabled;
            }
            if (audioEnabled && !m_file.hasAudio())
                addAudioStream();
            m_file.writeHeader();
        }
        av_packet_free(&m_heldVideo);
        return;
    }
    // The file must open on a key frame that follows its own configuration.
    if (!m_file.headerWritten() || !m_file.hasVideo() || (!m_keyFrameSeen && !(packet->flags & AV_PKT_FLAG_KEY))) {
        ++droppedBeforeKeyFrame;
        av_packet_free(&m_heldVideo);
        return;
    }
    m_keyFrameSeen = true;
    if (!m_timeline.hasBase() && !chooseBase(stopping))
        return;
    m_heldVideo = nullptr;
    qint64 previousDuration = m_timeline.nominalFrameDuration();
    const qint64 pts = m_timeline.placeVideo(packet->pts, &previousDuration);
    if (m_pendingVideo) {
        m_pendingVideo->duration = previousDuration;
        m_file.writeVideo(m_pendingVideo);
        av_packet_free(&m_pendingVideo);
    }
    packet->pts = pts;
    packet->dts = pts;
    m_pendingVideo = packet;
}

void MediaRecorder::processAudio(AVPacket *packet, bool stopping)
{
    if (packet->pts == AV_NOPTS_VALUE) {
        av_packet_free(&m_heldAudio);
        return;
    }
    if (!m_file.headerWritten() && !m_file.hasAudio()) {
        bool videoEnabled = true;
        {
            std::unique_lock lock(m_mutex);
            videoEnabled = m_videoEnabled;
        }
        addAudioStream();
        if (!videoEnabled)
            m_file.writeHeader();
    }
    if (!m_file.headerWritten() || !m_file.hasAudio()) {
        av_packet_free(&m_heldAudio);
        return;
    }
    if (!m_timeline.hasBase() && !chooseBase(stopping))
        return;
    m_heldAudio = nullptr;
    qint64 duration = 0;
    const qint64 pts = m_timeline.placeAudio(packet->pts, &duration);
    packet->duration = duration;
    packet->pts = pts;
    packet->dts = pts;
    m_file.writeAudio(packet);
    av_packet_free(&packet);
}

void MediaRecorder::finish()
{
    if (m_pendingVideo) {
        m_pendingVideo->duration = RecordingTimeline::LastFrameDuration;
        m_file.writeVideo(m_pendingVideo);
        av_packet_free(&m_pendingVideo);
    }
    av_packet_free(&m_heldVideo);
    av_packet_free(&m_heldAudio);
    m_file.finish();
    report(tr("Record Stopped"), MessageKind::Success);
    m_thread->quit();
    emit isRecordingChanged();
}
