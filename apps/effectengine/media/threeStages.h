// Three stages of work on a stream of pieces, each on a thread of its own, with bounded queues between them.
#pragma once

#include <condition_variable>
#include <deque>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace tool::media {

/// A queue of addresses between two threads. It holds no more than there are pieces, so push() never waits.
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

    /// No more pieces will come; pop() still gives those that wait.
    void end() { close(false); }

    /// pop() gives no piece any more.
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

/// The work of the stages.
template <class In, class Out> struct Stages {
    /// Fills a piece; false when there are no more. On a thread of its own.
    std::function<bool(In&)> produce;
    /// Makes a finished piece of it; false when there is nothing to consume. On the caller's thread.
    std::function<bool(In&, Out&)> process;
    /// Takes a finished piece. On a thread of its own.
    std::function<void(Out&)> consume;
};

/// One run of the stages over pieces that the caller made, which are used again and again.
template <class In, class Out> class StagesRun {
public:
    StagesRun(std::vector<In>& ins, std::vector<Out>& outs, const Stages<In, Out>& stages) : stages_(stages)
    {
        for (In& in : ins)
            freeIns_.push(&in);
        for (Out& out : outs)
            freeOuts_.push(&out);
    }

    /// See runThreeStages().
    void run()
    {
        std::thread producer([this] {
            guarded([this] { produce(); });
            readyIns_.end();
        });
        std::thread consumer([this] { guarded([this] { consume(); }); });
        guarded([this] { process(); });
        readyOuts_.end();
        producer.join();
        consumer.join();
        if (failure_)
            std::rethrow_exception(failure_);
    }

private:
    void produce()
    {
        while (In* const in = freeIns_.pop()) {
            if (!stages_.produce(*in))
                break;
            readyIns_.push(in);
        }
    }

    void process()
    {
        while (In* const in = readyIns_.pop()) {
            Out* const out = freeOuts_.pop();
            if (!out)
                break;
            if (stages_.process(*in, *out))
                readyOuts_.push(out);
            else
                freeOuts_.push(out);
            freeIns_.push(in);
        }
    }

    void consume()
    {
        while (Out* const out = readyOuts_.pop()) {
            stages_.consume(*out);
            freeOuts_.push(out);
        }
    }

    /// Does the work of a stage. The first exception of all stages is stored and ends the others.
    template <class Work> void guarded(Work work)
    {
        try {
            work();
        } catch (...) {
            {
                const std::lock_guard lock(failing_);
                if (!failure_)
                    failure_ = std::current_exception();
            }
            freeIns_.abandon();
            readyIns_.abandon();
            freeOuts_.abandon();
            readyOuts_.abandon();
        }
    }

    const Stages<In, Out>& stages_;
    Handoff<In> freeIns_;
    Handoff<In> readyIns_;
    Handoff<Out> freeOuts_;
    Handoff<Out> readyOuts_;
    std::mutex failing_;
    std::exception_ptr failure_;
};

/// Runs the stages until produce() says that there is no more. What a stage throws ends the others, and is
/// thrown again here once all threads have ended. The pieces are used again and again, so memory stays flat.
template <class In, class Out>
void runThreeStages(std::vector<In>& ins, std::vector<Out>& outs, const Stages<In, Out>& stages)
{
    StagesRun<In, Out>(ins, outs, stages).run();
}

} // namespace tool::media
