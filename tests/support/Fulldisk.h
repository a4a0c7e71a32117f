#pragma once

#include <QtGlobal>

#ifdef Q_OS_UNIX

#include <sys/resource.h>

#include <csignal>

/// Files cannot grow beyond a size while it lives, as on a disk that is full.
class TFullDisk {
 public:
  explicit TFullDisk(qint64 bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &before_);
    rlimit limit = before_;
    limit.rlim_cur = static_cast<rlim_t>(bytes);
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~TFullDisk() {
    setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, handler_);
  }
  TFullDisk(const TFullDisk&) = delete;
  TFullDisk& operator=(const TFullDisk&) = delete;

 private:
  rlimit before_;
  void (*handler_)(int);
};

#endif
