#pragma once

#include <memory>
#include <span>

namespace tavelle {

// What the application object tells its delegate, all on the main thread.
class ApplicationDelegate {
 public:
  virtual ~ApplicationDelegate() = default;

  virtual void applicationWillFinishLaunching() {}
  virtual void applicationDidFinishLaunching() {}

  // The person started the application while it was running. Linux: the second process tells the first and ends.
  virtual void applicationShouldHandleReopen() {}

  // The application is about to end, and this is the last that the delegate hears.
  virtual void applicationWillTerminate() {}
};

// The application object (NSApplication; a GApplication on Linux). Main thread only.
class Application {
 public:
  virtual ~Application() = default;

  // Held weakly.
  virtual void setDelegate(std::weak_ptr<ApplicationDelegate> delegate) = 0;

  // Launches, serves the main loop until terminate(), and returns the exit status of the process. `arguments` are
  // main()'s. Where another instance is running already, it is told so and this returns at once, without launching.
  virtual int run(std::span<char*> arguments) = 0;

  // Brings the application's windows before those of others. Linux: what the window manager makes of it.
  virtual void activateIgnoringOtherApps(bool flag) = 0;

  // Ends the application, returning first. Linux: what is on the pasteboard is handed over before the process ends.
  virtual void terminate() = 0;
};

}  // namespace tavelle
