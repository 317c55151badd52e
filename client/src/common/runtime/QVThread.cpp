#include "runtime/QVThread.h"

#include "runtime/Channel.h"
#include "runtime/Log.h"
#include "runtime/os/Os.h"

#include <algorithm>
#include <limits>

namespace pwr {

namespace {

// The id of the last message that required a response, of all threads; the first one is 0.
std::uint32_t s_messageId = std::numeric_limits<std::uint32_t>::max();

// A header tells at most 32 bits. A size beyond them is as invalid to the reader as the largest one.
std::uint32_t toldSize(unsigned long long payloadSize)
{
    return static_cast<std::uint32_t>(
        std::min<unsigned long long>(payloadSize, std::numeric_limits<std::uint32_t>::max()));
}

}    // namespace

QVThreadActor::~QVThreadActor() = default;

QVThread::QVThread(QVThreadActor& actor, void (*exitCallback)(void))
    : m_actor(actor), m_channel(std::make_unique<Channel>()), m_exitCallback(exitCallback)
{
}

QVThread::~QVThread()
{
    const bool isTold = !isRunning() || signal_i(MessageHeader::DIE, 0, 0, nullptr, false, false) == 0;
    if (!isTold) m_channel->closeRequests_i();    // ends the loop without memory
    join();
    destroy_i();
}

int QVThread::init()
{
    const QVThreadState state = getState_i();
    if (state != QVThreadState::CREATED && state != QVThreadState::INITIALIZED) {
        QV_LOG_WARNING("WARNING: invalid thread state %u!\n", static_cast<unsigned>(state));
        return -1;
    }
    destroy_i();
    m_state = QVThreadState::CREATED;
    if (!m_channel->create()) return -1;
    if (m_actor.initActor() != 0) {
        destroy_i();
        return -1;
    }
    m_state = QVThreadState::INITIALIZED;
    return 0;
}

int QVThread::start()
{
    const QVThreadState state = getState_i();
    if (state != QVThreadState::INITIALIZED) {
        QV_LOG_WARNING("WARNING: invalid thread state %u!\n", static_cast<unsigned>(state));
        return -1;
    }
    m_state = QVThreadState::RUNNING;    // the new thread looks at it
    m_thread = os::current().threads->startThread(&QVThread::run, this);
    if (m_thread != nullptr) return 0;
    m_state = QVThreadState::INITIALIZED;
    return -1;
}

int QVThread::signal(int command, bool needResponse, bool block)
{
    return signal_i(MessageHeader::COMMAND, command, 0, nullptr, needResponse, block);
}

int QVThread::signal(int command, unsigned long long payloadSize, const void* payload, bool needResponse, bool block)
{
    return signal_i(MessageHeader::COMMAND, command, payloadSize, payload, needResponse, block);
}

int QVThread::signal_i(int control, int command, unsigned long long payloadSize, const void* payload, bool needResponse,
                       bool block)
{
    if (block && !needResponse) {
        QV_LOG_WARNING("WARNING: cannot block if you don't require a response!\n");
        block = false;
    }
    MessageHeader header{0, control, command, toldSize(payloadSize)};
    if (needResponse) header.idAndFlag = (++s_messageId & MessageHeader::ID_BITS) | MessageHeader::RESPONSE_FLAG;
    if (!m_channel->writeRequestMessage_i(header, payload, payloadSize)) {
        QV_LOG_WARNING("WARNING: write error\n");
        return -1;
    }
    if (block) {
        QV_LOG_DEBUG("DEBUG: waiting for response!\n");
        return readResponse(header.id());
    }
    return needResponse ? header.id() : 0;
}

int QVThread::readResponse(int id)
{
    std::vector<char> message;
    while (m_channel->readResponseMessage_i(message)) {
        const MessageHeader header = MessageHeader::of(message);
        QV_LOG_DEBUG("DEBUG: received msg id = %d (looking for id = %d) in %s\n", header.id(), id,
                     "pwr::QVThread::readResponse");
        if (header.id() == id) return header.command;
    }
    QV_LOG_WARNING("WARNING: couldn't read response!\n");
    return -1;
}

int QVThread::kill()
{
    if (!isRunning()) {
        QV_LOG_WARNING("WARNING: killing a thread that isn't running?!\n");
        return -1;
    }
    return signal_i(MessageHeader::DIE, 0, 0, nullptr, true, true);
}

int QVThread::join()
{
    if (m_thread == nullptr) return 0;
    os::Threads& threads = *os::current().threads;
    threads.wait(m_thread);
    const int error = threads.close(m_thread);
    if (error != 0 && error != os::INVALID_HANDLE_CODE) {
        QV_LOG_WARNING("WARNING: failed to join QVThread and close the thread handle, error=%u\n",
                       static_cast<unsigned>(error));
    }
    m_thread = nullptr;
    return 0;
}

int QVThread::timedJoin(long)
{
    return join();
}

bool QVThread::isRunning() const
{
    return getState_i() == QVThreadState::RUNNING;
}

bool QVThread::isDead() const
{
    return getState_i() == QVThreadState::DEAD;
}

QVThreadState QVThread::getState_i() const
{
    return m_state;
}

void QVThread::destroy_i()
{
    m_channel->destroy();
    if (m_thread != nullptr) os::current().threads->close(m_thread);
    m_thread = nullptr;
}

unsigned QVThread::run(void* self)
{
    return static_cast<unsigned>(static_cast<QVThread*>(self)->run_i());
}

int QVThread::run_i()
{
    QV_LOG_DEBUG("DEBUG: Thread has pid = %d\n", os::current().threads->processId());
    int result = 0;
    bool isRead = true;
    while (isRead && isRunning()) {
        std::vector<char> message;
        isRead = m_channel->readRequestMessage_i(message);
        if (isRead) serve_i(message, result);
    }
    m_channel->closeResponses_i();    // nobody waits for an answer that will not come
    return isRead ? 0 : -1;
}

void QVThread::serve_i(const std::vector<char>& message, int& result)
{
    MessageHeader header = MessageHeader::of(message);
    QV_LOG_DEBUG("DEBUG: received command = %d\n", header.command);
    if (header.control == MessageHeader::DIE)
        die_i(result);
    else
        handle_i(header, message.data() + sizeof header, result);

    header.command = result;
    header.payloadSize = 0;
    if (!header.needsResponse()) return;
    QV_LOG_DEBUG("DEBUG: SYNC!\n");
    if (!m_channel->writeResponseMessage_i(header, nullptr))
        QV_LOG_WARNING("WARNING: couldn't write response in run_i!\n");
}

void QVThread::die_i(int& result)
{
    QV_LOG_DEBUG("DEBUG: OK, told to die\n");
    m_state = QVThreadState::DEAD;
    result = m_actor.handleKill();
}

void QVThread::handle_i(const MessageHeader& header, const char* payload, int& result)
{
    const char* given = header.payloadSize != 0 ? payload : nullptr;
    if (m_actor.handleCommand(header.command, header.payloadSize, given, &result) != 1) return;
    m_state = QVThreadState::DEAD;
    if (m_exitCallback != nullptr) m_exitCallback();
    QV_LOG_DEBUG("DEBUG: OK, thread exiting\n");
}

}    // namespace pwr
