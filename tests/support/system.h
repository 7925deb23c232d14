// What the tests ask of the operating system: processes, plain connections, ports. Nothing else of the tests
// that run on every system asks it for anything.

#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

/// The number of this process.
unsigned ProcessNumber();

/// The file of this very program.
std::filesystem::path TestProgram();

/// The file of another program of the same build.
inline std::filesystem::path ProgramBeside(const std::string& name) {
    return TestProgram().replace_filename(name).replace_extension(TestProgram().extension());
}

/// A program that runs beside the test. Its output and its errors come in one stream.
class ChildProcess {
  public:
    /// Runs the file `program` in `folder`; all texts are UTF-8.
    ChildProcess(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                 const std::filesystem::path& folder = std::filesystem::current_path());
    /// Kills it if it still runs.
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// Waits for more of its output and appends it. False when the output has ended, and when nothing came in
    /// 20 seconds.
    bool Read(std::string& output);
    /// Its number while it runs.
    unsigned Number() const;
    /// Asks it to end, as the system does when it shuts down, or Ctrl-C.
    void AskToEnd();
    /// Ends it in the middle of whatever it does.
    void Kill();
    /// Waits for its end and gives its exit status, -1 for one that was killed.
    int Wait();

  private:
    std::intptr_t process_ = 0;
    std::intptr_t output_ = -1;
};

/// A client that does only what it is told.
class RawClient {
  public:
    /// To the pipe of a name; waits while the pipe is busy.
    explicit RawClient(const std::string& pipe);
    /// To a port of this machine; what it sends is at its end after a second of silence.
    explicit RawClient(int port);
    ~RawClient();
    RawClient(const RawClient&) = delete;
    RawClient& operator=(const RawClient&) = delete;

    bool Connected() const { return connected_; }
    bool Send(const std::string& text) const;
    /// Ends the request, where the system has something for that.
    void EndSending() const;
    /// All that comes until the end; "error" behind it when it does not end well.
    std::string Receive() const;

  private:
    std::intptr_t handle_ = -1;
    bool ofPipe_;
    bool connected_ = false;
};

/// A port that is held while the object lives, as another program's server would hold it.
class HeldPort {
  public:
    explicit HeldPort(int port);
    ~HeldPort();
    HeldPort(const HeldPort&) = delete;
    HeldPort& operator=(const HeldPort&) = delete;

  private:
    std::intptr_t socket_;
};
