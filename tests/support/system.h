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
    /// Runs the file `program` in `folder` with `input`, a few lines, as its standard input; all texts are
    /// UTF-8.
    ChildProcess(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                 const std::filesystem::path& folder = std::filesystem::current_path(),
                 const std::string& input = "");
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

/// A serial line without a device: the test has its one end, a host opens the other.
class SerialLink {
  public:
    SerialLink();
    ~SerialLink();
    SerialLink(const SerialLink&) = delete;
    SerialLink& operator=(const SerialLink&) = delete;

    /// False where there is none, for want of what `Lacks` tells.
    bool Made() const { return end_ != -1; }
    static const char* Lacks();
    /// What a host opens.
    std::string Device() const;
    void Write(const std::string& text) const;
    /// The next line without its end; "timeout" behind it when it does not come in 20 seconds.
    std::string ReadLine() const;

  private:
    std::intptr_t end_;
};

/// A device that is no serial port.
extern const char* const NullDevice;

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
