// Watches a program's windows from outside, on an X display of its own without window manager.
//
// usage: bench-watch start PROGRAM [ARGUMENT…]
//          Starts it, waits until its main window has been drawn, and ends it. Prints as JSON the
//          milliseconds from its start to the first drawing of a first window (a splash screen counts) and of
//          the main window, the processor time until then, and the resident memory in KiB half a second
//          later.
//        bench-watch paint TITLE
//          Prints the monotonic time in nanoseconds of every change of pixels in the window with the title,
//          until it is ended.
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/damage.h>
#include <xcb/xcb.h>

#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace {

constexpr int kLongestStart_ms = 60'000;
constexpr int kSettling_ms = 500;
constexpr uint16_t kSmallestWindow_px = 100;

template <typename Reply>
using Owned = std::unique_ptr<Reply, decltype(&std::free)>;

template <typename Reply>
Owned<Reply> Own(Reply* reply) {
  return Owned<Reply>(reply, &std::free);
}

[[noreturn]] void Fail(const std::string& what) {
  (void)std::fprintf(stderr, "bench-watch: %s\n", what.c_str());
  std::exit(1);
}

std::int64_t Now_ns() {
  timespec now{};
  (void)clock_gettime(CLOCK_MONOTONIC, &now);
  return std::int64_t{now.tv_sec} * 1'000'000'000 + now.tv_nsec;
}

class Display {
 public:
  Display() : connection_(xcb_connect(nullptr, nullptr)) {
    if (xcb_connection_has_error(connection_) != 0) Fail("no X display");
    root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
    const xcb_query_extension_reply_t* damage = xcb_get_extension_data(connection_, &xcb_damage_id);
    if (damage == nullptr || damage->present == 0) Fail("the display does not report changes of pixels");
    changeEvent_ = static_cast<uint8_t>(damage->first_event + XCB_DAMAGE_NOTIFY);
    Own(xcb_damage_query_version_reply(connection_, xcb_damage_query_version(connection_, 1, 1), nullptr));
    const uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection_, root_, XCB_CW_EVENT_MASK, &events);
    xcb_flush(connection_);
  }
  ~Display() { xcb_disconnect(connection_); }
  Display(const Display&) = delete;
  Display& operator=(const Display&) = delete;

  // The next event, or nothing after `timeout_ms` (-1: never).
  Owned<xcb_generic_event_t> Next(int timeout_ms) {
    for (;;) {
      if (xcb_generic_event_t* event = xcb_poll_for_event(connection_)) return Own(event);
      if (xcb_connection_has_error(connection_) != 0) Fail("the display is gone");
      pollfd ready{xcb_get_file_descriptor(connection_), POLLIN, 0};
      if (poll(&ready, 1, timeout_ms) <= 0) return Own<xcb_generic_event_t>(nullptr);
    }
  }

  // From now on changes of the window's pixels arrive as events, each of them.
  void Watch(xcb_window_t window) {
    const xcb_damage_damage_t damage = xcb_generate_id(connection_);
    xcb_damage_create(connection_, damage, window, XCB_DAMAGE_REPORT_LEVEL_RAW_RECTANGLES);
    xcb_flush(connection_);
  }

  // The window of a change, 0 for any other event.
  [[nodiscard]] xcb_window_t Changed(const xcb_generic_event_t& event) const {
    if ((event.response_type & 0x7FU) != changeEvent_) return 0;
    return reinterpret_cast<const xcb_damage_notify_event_t&>(event).drawable;
  }

  // The window that a MapNotify shows, 0 for any other event.
  [[nodiscard]] static xcb_window_t Mapped(const xcb_generic_event_t& event) {
    if ((event.response_type & 0x7FU) != XCB_MAP_NOTIFY) return 0;
    return reinterpret_cast<const xcb_map_notify_event_t&>(event).window;
  }

  [[nodiscard]] std::string Title(xcb_window_t window) {
    const auto reply = Own(xcb_get_property_reply(
        connection_, xcb_get_property(connection_, 0, window, Atom("_NET_WM_NAME"), XCB_ATOM_ANY, 0, 64),
        nullptr));
    if (!reply) return {};
    return {static_cast<const char*>(xcb_get_property_value(reply.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
  }

  [[nodiscard]] bool IsSplash(xcb_window_t window) {
    const auto reply = Own(xcb_get_property_reply(
        connection_,
        xcb_get_property(connection_, 0, window, Atom("_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM, 0, 8), nullptr));
    if (!reply) return false;
    const auto* types = static_cast<const xcb_atom_t*>(xcb_get_property_value(reply.get()));
    const xcb_atom_t splash = Atom("_NET_WM_WINDOW_TYPE_SPLASH");
    for (int i = 0; i < xcb_get_property_value_length(reply.get()) / int{sizeof(xcb_atom_t)}; ++i) {
      if (types[i] == splash) return true;
    }
    return false;
  }

  // The toolkits' helper windows are a few pixels large.
  [[nodiscard]] bool IsLarge(xcb_window_t window) {
    const auto size = Size(window);
    return size && size->width >= kSmallestWindow_px && size->height >= kSmallestWindow_px;
  }

  // Whether its pixels have more than one colour.
  [[nodiscard]] bool HasContent(xcb_window_t window) {
    const auto size = Size(window);
    if (!size) return false;
    const auto image = Own(xcb_get_image_reply(connection_,
                                               xcb_get_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, window,
                                                             0, 0, size->width, size->height, 0xFFFFFFFF),
                                               nullptr));
    if (!image) return false;
    const auto* pixels = reinterpret_cast<const uint32_t*>(xcb_get_image_data(image.get()));
    const std::size_t count =
        static_cast<std::size_t>(xcb_get_image_data_length(image.get())) / sizeof *pixels;
    for (std::size_t i = 1; i < count; ++i) {
      if (pixels[i] != pixels[0]) return true;
    }
    return false;
  }

  // A window that is already shown, 0 when there is none of that title.
  [[nodiscard]] xcb_window_t Find(const std::string& title) {
    const auto tree = Own(xcb_query_tree_reply(connection_, xcb_query_tree(connection_, root_), nullptr));
    if (!tree) return 0;
    for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
      const xcb_window_t window = xcb_query_tree_children(tree.get())[i];
      if (Title(window) == title) return window;
    }
    return 0;
  }

 private:
  xcb_atom_t Atom(std::string_view name) {
    const auto reply = Own(xcb_intern_atom_reply(
        connection_, xcb_intern_atom(connection_, 0, static_cast<uint16_t>(name.size()), name.data()),
        nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
  }

  Owned<xcb_get_geometry_reply_t> Size(xcb_window_t window) {
    return Own(xcb_get_geometry_reply(connection_, xcb_get_geometry(connection_, window), nullptr));
  }

  xcb_connection_t* connection_;
  xcb_window_t root_ = 0;
  uint8_t changeEvent_ = 0;
};

long ResidentMemory_KiB(pid_t process) {
  std::ifstream status("/proc/" + std::to_string(process) + "/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("VmRSS:")) return std::atol(line.c_str() + std::strlen("VmRSS:"));
  }
  return 0;
}

// Of the main thread, so far.
double ProcessorTime_ms(pid_t process) {
  std::ifstream statistics("/proc/" + std::to_string(process) + "/schedstat");
  double used_ns = 0;
  statistics >> used_ns;
  return used_ns * 1e-6;
}

double Milliseconds(std::int64_t from_ns, std::int64_t to_ns) {
  return static_cast<double>(to_ns - from_ns) * 1e-6;
}

// A window counts as drawn with the first change after which it has content.
struct Drawings {
  std::int64_t first_ns = 0;
  std::int64_t main_ns = 0;
};

Drawings WaitForDrawings(Display& display) {
  Drawings drawings;
  std::map<xcb_window_t, bool> watched;  // window, and whether it is a splash screen
  while (drawings.main_ns == 0) {
    const auto event = display.Next(kLongestStart_ms);
    const std::int64_t now_ns = Now_ns();
    if (!event) Fail("no window was drawn");
    if (const xcb_window_t window = Display::Mapped(*event); window != 0 && display.IsLarge(window)) {
      display.Watch(window);
      watched[window] = display.IsSplash(window);
      // It may have been drawn between being shown and being watched.
      if (!display.HasContent(window)) continue;
      if (drawings.first_ns == 0) drawings.first_ns = now_ns;
      if (!watched[window]) drawings.main_ns = now_ns;
    } else if (const auto found = watched.find(display.Changed(*event)); found != watched.end()) {
      if ((drawings.first_ns != 0 && found->second) || !display.HasContent(found->first)) continue;
      if (drawings.first_ns == 0) drawings.first_ns = now_ns;
      if (!found->second) drawings.main_ns = now_ns;
    }
  }
  return drawings;
}

int MeasureStart(char** command) {
  Display display;
  const std::int64_t start_ns = Now_ns();
  pid_t process = 0;
  if (posix_spawnp(&process, command[0], nullptr, nullptr, command, environ) != 0) Fail("cannot start");
  const Drawings drawings = WaitForDrawings(display);
  const double processor_ms = ProcessorTime_ms(process);
  (void)usleep(kSettling_ms * 1000);
  const long memory_KiB = ResidentMemory_KiB(process);
  (void)kill(process, SIGTERM);
  (void)waitpid(process, nullptr, 0);
  std::printf("{\"first_ms\": %.3f, \"main_ms\": %.3f, \"processor_ms\": %.3f, \"memory_KiB\": %ld}\n",
              Milliseconds(start_ns, drawings.first_ns), Milliseconds(start_ns, drawings.main_ns),
              processor_ms, memory_KiB);
  return 0;
}

int ReportPainting(const std::string& title) {
  Display display;
  xcb_window_t window = display.Find(title);
  if (window != 0) display.Watch(window);
  std::puts("ready");
  (void)std::fflush(stdout);
  for (;;) {
    const auto event = display.Next(-1);
    if (!event) Fail("the display is gone");
    const std::int64_t now_ns = Now_ns();
    if (const xcb_window_t mapped = Display::Mapped(*event);
        mapped != 0 && window == 0 && display.Title(mapped) == title) {
      window = mapped;
      display.Watch(window);
    } else if (window != 0 && display.Changed(*event) == window) {
      std::printf("%lld\n", static_cast<long long>(now_ns));
      (void)std::fflush(stdout);
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  const std::string_view mode = argc > 2 ? argv[1] : "";
  if (mode == "start") return MeasureStart(argv + 2);
  if (mode == "paint") return ReportPainting(argv[2]);
  Fail("usage: bench-watch start PROGRAM [ARGUMENT...] | paint TITLE");
}
