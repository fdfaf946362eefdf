// Three stages of work on a stream of pieces, each on a thread of its own, with bounded queues between them.
#pragma once

#include <condition_variable>
#include <deque>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace media {

/// Hands addresses from thread to thread. It never holds more than there are pieces, so nobody waits to push.
template <class Piece> class Handoff {
public:
    void push(Piece* piece)
    {
        {
            const std::lock_guard lock(mutex_);
            pieces_.push_back(piece);
        }
        changed_.notify_one();
    }

    /// The next piece, or null when the stream has ended.
    Piece* pop()
    {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return ended_ || !pieces_.empty(); });
        if (pieces_.empty() || abandoned_)
            return nullptr;
        Piece* const piece = pieces_.front();
        pieces_.pop_front();
        return piece;
    }

    /// No more pieces will come; those that wait are still handed out.
    void end() { close(false); }

    /// Nothing is handed out any more.
    void abandon() { close(true); }

private:
    void close(bool abandoned)
    {
        {
            const std::lock_guard lock(mutex_);
            ended_ = true;
            abandoned_ = abandoned_ || abandoned;
        }
        changed_.notify_all();
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Piece*> pieces_;
    bool ended_ = false;
    bool abandoned_ = false;
};

/// The stages. The pieces are made beforehand and used again and again, so memory stays flat.
template <class In, class Out> struct Stages {
    std::function<bool(In&)> produce; ///< fills a piece; false when there are no more. Own thread.
    std::function<bool(In&, Out&)>
        process;                       ///< on the caller's thread; false when there is nothing to consume
    std::function<void(Out&)> consume; ///< own thread
};

/// Runs the stages until produce() says that there is no more. What a stage throws ends the others, and is
/// thrown again here once all threads have ended.
template <class In, class Out>
void runThreeStages(std::vector<In>& ins, std::vector<Out>& outs, const Stages<In, Out>& stages)
{
    Handoff<In> freeIns;
    Handoff<In> readyIns;
    Handoff<Out> freeOuts;
    Handoff<Out> readyOuts;
    for (In& in : ins)
        freeIns.push(&in);
    for (Out& out : outs)
        freeOuts.push(&out);

    std::mutex failing;
    std::exception_ptr failure;
    const auto guarded = [&](auto&& work) {
        try {
            work();
        } catch (...) {
            {
                const std::lock_guard lock(failing);
                if (!failure)
                    failure = std::current_exception();
            }
            freeIns.abandon();
            readyIns.abandon();
            freeOuts.abandon();
            readyOuts.abandon();
        }
    };

    std::thread producer([&] {
        guarded([&] {
            while (In* const in = freeIns.pop()) {
                if (!stages.produce(*in))
                    break;
                readyIns.push(in);
            }
        });
        readyIns.end();
    });
    std::thread consumer([&] {
        guarded([&] {
            while (Out* const out = readyOuts.pop()) {
                stages.consume(*out);
                freeOuts.push(out);
            }
        });
    });
    guarded([&] {
        while (In* const in = readyIns.pop()) {
            Out* const out = freeOuts.pop();
            if (!out)
                break;
            if (stages.process(*in, *out))
                readyOuts.push(out);
            else
                freeOuts.push(out);
            freeIns.push(in);
        }
    });
    readyOuts.end();
    producer.join();
    consumer.join();
    if (failure)
        std::rethrow_exception(failure);
}

} // namespace media
