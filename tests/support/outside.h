// What a test sees of a load that reaches outside its document.
#pragma once

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <set>
#include <string>
#include <thread>

namespace support {

// A server on the loopback. It answers nothing, except where it is told to.
class CServer {
 public:
  CServer() : m_Socket(socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* pAddress = reinterpret_cast<sockaddr*>(&address);
    EXPECT_EQ(bind(m_Socket, pAddress, size), 0);
    EXPECT_EQ(listen(m_Socket, 8), 0);
    EXPECT_EQ(getsockname(m_Socket, pAddress, &size), 0);
    m_Host = "127.0.0.1:" + std::to_string(ntohs(address.sin_port));
  }
  ~CServer() { close(m_Socket); }
  CServer(const CServer&) = delete;
  CServer& operator=(const CServer&) = delete;

  const std::string& Host() const { return m_Host; }
  // Whether someone has connected since the last time.
  bool WasAsked() const {
    const int peer = accept(m_Socket, nullptr, nullptr);
    if (peer >= 0) close(peer);
    return peer >= 0;
  }
  // Answers whoever asks, and tells whether someone did.
  bool AnswerUntil(const std::atomic<bool>& isOver, const std::string& text) const {
    bool wasAsked = false;
    while (!isOver) {
      const int peer = accept(m_Socket, nullptr, nullptr);
      if (peer < 0) {
        std::this_thread::yield();
        continue;
      }
      wasAsked = true;
      Answer(peer, text);
    }
    return wasAsked;
  }

 private:
  // Does not wait for a question: a client of another protocol might wait for us.
  static void Answer(int peer, const std::string& text) {
    const std::string answer = "HTTP/1.0 200 OK\r\n\r\n" + text;
    EXPECT_GE(send(peer, answer.data(), answer.size(), MSG_NOSIGNAL), -1);
    shutdown(peer, SHUT_WR);
    char question[4096];
    while (recv(peer, question, sizeof question, 0) > 0) continue;
    close(peer);
  }

  int m_Socket;
  std::string m_Host;
};

// Tells which files of some folders were opened.
class CFolderWatch {
 public:
  CFolderWatch() : m_Watch(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {}
  ~CFolderWatch() { close(m_Watch); }
  CFolderWatch(const CFolderWatch&) = delete;
  CFolderWatch& operator=(const CFolderWatch&) = delete;

  void Add(const std::string& folder) const {
    EXPECT_GE(inotify_add_watch(m_Watch, folder.c_str(), IN_OPEN | IN_ACCESS), 0);
  }
  // Since the last time.
  std::set<std::string> Opened() const {
    std::set<std::string> names;
    alignas(inotify_event) char events[4096];
    for (ssize_t size; (size = read(m_Watch, events, sizeof events)) > 0;) {
      for (ssize_t at = 0; at < size;) {
        const auto& event = *reinterpret_cast<const inotify_event*>(events + at);
        if (event.len > 0) names.emplace(event.name);
        at += static_cast<ssize_t>(sizeof event + event.len);
      }
    }
    return names;
  }

 private:
  int m_Watch;
};

}  // namespace support
