#include "examples/device-simulator/Pty.h"

#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

TPty::TPty() {
  master_ = posix_openpt(O_RDWR | O_NOCTTY);
  if (master_ < 0) return;
  const char* path = nullptr;
  if (grantpt(master_) == 0 && unlockpt(master_) == 0) path = ptsname(master_);
  const int slave = path ? open(path, O_RDWR | O_NOCTTY) : -1;
  if (slave < 0 || fcntl(master_, F_SETFL, O_NONBLOCK) < 0) {
    Unplug();
    return;
  }
  // No echo and no line editing, whatever program opens it; the settings outlive this closing.
  termios line{};
  tcgetattr(slave, &line);
  cfmakeraw(&line);
  tcsetattr(slave, TCSANOW, &line);
  close(slave);
  path_ = path;
}

bool TPty::HasPeer() const {
  pollfd poll{master_, POLLOUT, 0};
  return master_ >= 0 && ::poll(&poll, 1, 0) >= 0 && !(poll.revents & POLLHUP);
}

void TPty::Wait(int milliseconds) const {
  pollfd poll{master_, POLLIN, 0};
  // Without a peer the system reports the hang-up at once, again and again.
  if (!HasPeer()) poll.fd = -1;
  ::poll(&poll, 1, milliseconds);
}

std::string TPty::Read() {
  std::string bytes(4096, '\0');
  const ssize_t count = master_ < 0 ? 0 : read(master_, bytes.data(), bytes.size());
  bytes.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
  return bytes;
}

void TPty::Write(std::string_view bytes) {
  if (bytes.empty() || !HasPeer()) return;
  const ssize_t count = write(master_, bytes.data(), bytes.size());
  bytesLost_ += bytes.size() - (count > 0 ? static_cast<std::size_t>(count) : 0);
}

void TPty::Unplug() {
  if (master_ >= 0) close(master_);
  master_ = -1;
}
