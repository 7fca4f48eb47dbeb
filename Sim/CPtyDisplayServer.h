#pragma once
// Serves a virtual display on a pseudo-terminal, as a display's controller answers on a serial
// line: each complete DDC/CI request read from the line is answered with the display's reply,
// written without its checksum byte. POSIX only.

#include <atomic>
#include <memory>
#include <string>

#include "ByteBuffer.h"
#include "CVirtualDisplay.h"

class CPtyDisplayServer {
public:
    explicit CPtyDisplayServer(std::shared_ptr<CVirtualDisplay> display_I);
    ~CPtyDisplayServer();
    CPtyDisplayServer(const CPtyDisplayServer&) = delete;
    CPtyDisplayServer& operator=(const CPtyDisplayServer&) = delete;

    // Creates the terminal; false (with the reason on standard error) when it cannot.
    bool Open();
    // The terminal's path, for the program on the other end ("/dev/pts/7").
    const std::string& TerminalPath() const { return mTerminalPath; }

    // Answers what arrives until stop_I is set, waking at least every timeoutMs_I.
    void Serve(const std::atomic<bool>& stop_I, int timeoutMs_I = 100);
    // Reads what is there (waiting up to timeoutMs_I) and answers every complete request.
    void ServeOnce(int timeoutMs_I);

    // How many bytes the request at the front of pending_I takes: 0 while that is not known
    // yet; 1 for a byte that cannot start a request (it is dropped).
    static size_t RequestLength(const ByteBuffer& pending_I);

private:
    std::shared_ptr<CVirtualDisplay> mDisplay;
    int mController = -1;  // the master side, ours
    int mLine = -1;        // the far side, held open so the line stays up between users
    std::string mTerminalPath;
    ByteBuffer mPending;
};
