// The HTTP service: two routes over cpp-httplib.

#include <httplib.h>

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <functional>
#include <list>
#include <mutex>
#include <new>
#include <string>
#include <thread>
#include <vector>

#include "include/vorn_contract.h"
#include "include/vorn_server.h"
#include "platform/listen_socket.h"
#include "platform/memory.h"
#include "platform/sleep.h"
#include "platform/stream_socket.h"
#include "service/api_envelope.h"
#include "service/http_connection.h"

namespace vorn {

namespace {

constexpr std::size_t RequestsPerConnection = 100;

/// A request with a body that its handler has not read whole: what follows it on the connection is no
/// request.
thread_local bool bodyLeft = false;

/// A request that names no length has no body; the library would wait for one until the connection ends.
bool HasBody(const httplib::Request& request) {
    return request.has_header("Content-Length") || request.has_header("Transfer-Encoding");
}

/// The library's pool of workers, which it would end the process for where there is no memory: a connection
/// waits until there is, and a worker that could not be started is done without.
class Workers : public httplib::TaskQueue {
  public:
    Workers() {
        while (threads_.size() < CPPHTTPLIB_THREAD_POOL_COUNT && (Start() || threads_.empty())) continue;
    }
    void enqueue(std::function<void()> work) override {
        for (bool queued = false; !queued;) queued = Push(work);
        came_.notify_one();
    }
    void shutdown() override {
        {
            const std::lock_guard guard(lock_);
            ends_ = true;
        }
        came_.notify_all();
        for (std::thread& thread : threads_) thread.join();
    }

  private:
    static constexpr int RestMilliseconds = 10;

    bool Start() {
        try {
            threads_.reserve(CPPHTTPLIB_THREAD_POOL_COUNT);
            threads_.emplace_back([this] { Work(); });
            return true;
        } catch (const std::exception&) {
            SleepMilliseconds(RestMilliseconds);
            return false;
        }
    }
    bool Push(const std::function<void()>& work) {
        try {
            const std::lock_guard guard(lock_);
            waiting_.push_back(work);
            return true;
        } catch (const std::bad_alloc&) {
            SleepMilliseconds(RestMilliseconds);
            return false;
        }
    }
    void Work() {
        for (;;) {
            std::unique_lock guard(lock_);
            came_.wait(guard, [this] { return ends_ || !waiting_.empty(); });
            if (waiting_.empty()) return;
            const std::function<void()> work = std::move(waiting_.front());
            waiting_.pop_front();
            guard.unlock();
            work();
        }
    }

    std::mutex lock_;  ///< guards what follows but the threads
    std::condition_variable came_;
    std::list<std::function<void()>> waiting_;
    bool ends_ = false;
    std::vector<std::thread> threads_;
};

/// The library's server. It lets a client go where the library, out of memory, would end the process, and
/// gives back what large requests took.
class HttpServer : public httplib::Server {
  private:
    bool process_and_close_socket(socket_t socket) override {
        HttpConnection connection(socket, Milliseconds(read_timeout_sec_), Milliseconds(write_timeout_sec_));
        try {
            for (std::size_t left = keep_alive_max_count_; left > 0; --left) {
                if (!connection.AwaitRequest(Milliseconds(keep_alive_timeout_sec_))) break;
                const bool goesOn = Serve(connection, left == 1);
                MemoryGiveBack(connection.MovedBytes());
                if (!goesOn) break;
            }
        } catch (const std::exception&) {
            MemoryGiveBack(connection.MovedBytes());
        }
        SocketEnd(static_cast<std::intptr_t>(socket));
        return true;
    }

    /// True when the connection may bring another request.
    bool Serve(HttpConnection& connection, bool last) {
        bool closes = false;
        bodyLeft = true;
        const auto headRead = [&connection](httplib::Request& request) {
            connection.HeadEnded();
            bodyLeft = HasBody(request);
            // Replies go out as they are: to pack a large one takes the library seconds for each megabyte.
            request.headers.erase("Accept-Encoding");
        };
        return process_request(connection, last, closes, headRead) && !closes && !bodyLeft;
    }

    static int Milliseconds(time_t seconds) { return static_cast<int>(seconds * 1000); }
};

void Hi(const httplib::Request& /*request*/, httplib::Response& response) {
    response.set_content("Hello Quelmo!\n", "text/plain");
}

/// Reads the whole body; false when it did not come whole. The library, left to read by itself, would refuse
/// a body of over 8 KB that is marked as a form, and so each larger document that a plain `curl -d` sends. A
/// multipart body, which has no one text, counts as empty.
bool ReadBody(const httplib::Request& request, const httplib::ContentReader& content, std::string& body) {
    if (!HasBody(request)) return true;
    if (request.is_multipart_form_data()) {
        return content([](const httplib::MultipartFormData&) { return true; },
                       [](const char*, std::size_t) { return true; });
    }
    return content([&body](const char* data, std::size_t bytes) {
        body.append(data, bytes);
        return true;
    });
}

void Api(const httplib::Request& request, httplib::Response& response,
         const httplib::ContentReader& content) {
    std::string body;
    // Half a request is not carried out: the library then answers with its own error status.
    if (!ReadBody(request, content, body)) return;
    bodyLeft = false;
    std::string reply;
    ApiEnvelope(body, reply);
    // A reply ends at its first zero byte.
    reply.resize(std::min(reply.find('\0'), reply.size()));
    response.set_content(reply, "application/json");
}

void Serve() {
    HttpServer svr;
    svr.new_task_queue = [] { return new Workers; };
    svr.set_socket_options([](socket_t socket) { ListenSocketOptions(static_cast<std::intptr_t>(socket)); });
    svr.set_keep_alive_max_count(RequestsPerConnection);
    svr.Get("/hi", Hi);
    svr.Post("/api", Api);
    for (int port = VORN_FIRST_PORT; port <= VORN_LAST_PORT; ++port) {
        svr.listen("0.0.0.0", port, AI_PASSIVE);
    }
}

}  // namespace

}  // namespace vorn

void HttpServerThread(const char* const /*unused*/) {
    vorn::MemoryLargeSeparate();
    try {
        vorn::Serve();
    } catch (const std::exception&) {
        // Not even the memory to begin with: no service then, as where no port is free.
    }
}
