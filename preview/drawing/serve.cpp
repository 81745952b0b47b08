// SPDX-License-Identifier: MIT
// Reading whole orders, and answering also where a line took too much memory.
#include "preview/drawing/serve.h"

#include "system/child.h"

#include <sys/socket.h>

#include <cerrno>
#include <charconv>
#include <cstdio>
#include <new>
#include <string_view>
#include <system_error>

namespace preview {

namespace {

bool receive(int socket, std::string& bytes, std::size_t size) {
    bytes.resize(size);
    std::size_t length = 0;
    while (length < size) {
        const ssize_t count = recv(socket, bytes.data() + length, size - length, 0);
        if (count > 0) {
            length += static_cast<std::size_t>(count);
        } else if (count == 0 || errno != EINTR) {
            return false;
        }
    }
    return true;
}

bool send(int socket, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (count > 0) {
            bytes.remove_prefix(static_cast<std::size_t>(count));
        } else if (count == 0 || errno != EINTR) {
            return false;
        }
    }
    return true;
}

std::string answerTo(const Request& request, const DrawFunction& draw) {
    try {
        return encode(draw(request));
    } catch (const std::bad_alloc&) {
        return encode(Answer{request.file + ": drawing it takes too much memory"});
    }
}

template <typename Number>
bool parse(std::string_view text, Number& number) {
    return std::from_chars(text.data(), text.data() + text.size(), number).ec == std::errc();
}

} // namespace

Look lookAt(const std::string& file) {
    if (const auto identity = identityOf(file)) {
        return {{}, *identity};
    }
    return {file + ": " + std::generic_category().message(errno)};
}

bool serve(int socket, unsigned seconds, const DrawFunction& draw, const LookFunction& look) {
    std::string bytes;
    while (receive(socket, bytes, lengthSize)) {
        const std::size_t length = bodyLength(bytes);
        if (length > maximumRequestBody) {
            return false;
        }
        if (!receive(socket, bytes, length)) {
            break;
        }
        const auto order = decodeOrder(bytes);
        if (!order) {
            return false;
        }
        sys::allowProcessorTime(seconds);
        const Request& request = order->request;
        if (!send(socket, order->task == Task::Look ? encode(look(request.file))
                                                    : answerTo(request, draw))) {
            break;
        }
    }
    return true;
}

int serveMain(int argc, char** argv, const DrawFunction& draw, const LookFunction& look) {
    std::size_t memory = 0;
    unsigned seconds = 0;
    if (argc != 3 || !parse(argv[1], memory) || !parse(argv[2], seconds)) {
        std::fputs("This program draws previews for the windows of others, who start it.\n",
                   stderr);
        return 2;
    }
    sys::limitThisProcess(memory);
    return serve(STDIN_FILENO, seconds, draw, look) ? 0 : 1;
}

} // namespace preview
