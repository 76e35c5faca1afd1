// control_socket.h: a local socket that takes lines and answers lines.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include <poll.h>

namespace norvik {

class Control_Socket {
 public:
  // Raises a file fault that says what to do. A socket that nobody listens on gives way.
  explicit Control_Socket(std::string path);
  ~Control_Socket();
  Control_Socket(const Control_Socket&) = delete;
  Control_Socket& operator=(const Control_Socket&) = delete;

  // What `poll` has to watch.
  void Add_Files(std::vector<pollfd>& files) const;
  // Takes callers and lines; `answer` gives the line that goes back, empty: none.
  void Serve(const std::function<std::string(int caller, const std::string& line)>& answer);
  // Sends a line to a caller that is still there.
  void Send(int caller, const std::string& line);
  bool Is_There(int caller) const;

 private:
  struct Caller {
    int File = -1;
    std::string Received;
  };
  void Take_Callers();
  // False: the caller has gone.
  static bool Receive(Caller& caller);

  std::string Path;
  int Listener = -1;
  std::vector<Caller> Callers;
};

}  // namespace norvik
