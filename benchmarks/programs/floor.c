/* The least that does the job, to know what this machine and its X server can give at all.
 *
 *   floor KEYCODE http://127.0.0.1:PORT/PATH
 *
 * Control+Alt+KEYCODE: every type on the clipboard is saved, Control+C sent, 150 ms waited, the text read, one request
 * made, the answer put on the clipboard, Control+V sent, 150 ms waited, the saved types put back. No settings, no
 * notifications, no errors told, nothing looked after: what Tavelle does beyond this shows as its distance from it. */
#define _GNU_SOURCE
#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <stdbool.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <time.h>
#include <unistd.h>
#include <xcb/xcb.h>
#include <xcb/xtest.h>

enum { keyC = 54, keyV = 55, keyControl = 37, mostItems = 64, waitAfterKeys = 150, patience = 5000 };

static const uint8_t modifierKeys[] = {37, 50, 62, 64, 105, 108, 133, 134};

enum { CLIPBOARD, TARGETS, UTF8_STRING, INCR, TIMESTAMP, MULTIPLE, SAVE_TARGETS, PLACE, atomCount };
static const char* const atomNames[atomCount] = {"CLIPBOARD", "TARGETS",  "UTF8_STRING",  "INCR",
                                                 "TIMESTAMP", "MULTIPLE", "SAVE_TARGETS", "FLOOR_DATA"};
static xcb_atom_t atoms[atomCount];

struct Item {
  xcb_atom_t target, type;
  uint8_t format;
  char* bytes;
  size_t size;
};

static xcb_connection_t* connection;
static xcb_window_t root, window;
static uint16_t port;
static char path[256];

static struct Item offered[mostItems]; /* what the clipboard has while it is ours */
static int offeredCount;

static bool isPressed, hasAnswer, hasNewData;
static xcb_atom_t answeredProperty;

static int64_t now(void) {
  struct timespec time;
  clock_gettime(CLOCK_MONOTONIC, &time);
  return time.tv_sec * INT64_C(1000000000) + time.tv_nsec;
}

static void* allocate(void* old, size_t size) {
  void* const memory = realloc(old, size);
  if (!memory) abort();
  return memory;
}

static void serve(const xcb_selection_request_event_t* request) {
  xcb_selection_notify_event_t answer = {.response_type = XCB_SELECTION_NOTIFY,
                                         .time = request->time,
                                         .requestor = request->requestor,
                                         .selection = request->selection,
                                         .target = request->target};
  const xcb_atom_t property = request->property ? request->property : request->target;
  if (request->target == atoms[TARGETS]) {
    xcb_atom_t targets[mostItems + 1] = {atoms[TARGETS]};
    for (int i = 0; i < offeredCount; ++i) targets[i + 1] = offered[i].target;
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, request->requestor, property, XCB_ATOM_ATOM, 32,
                        (uint32_t)offeredCount + 1, targets);
    answer.property = property;
  }
  for (int i = 0; i < offeredCount; ++i) {
    const struct Item* const item = &offered[i];
    if (item->target != request->target) continue;
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, request->requestor, property, item->type, item->format,
                        (uint32_t)(item->size / (item->format / 8)), item->bytes);
    answer.property = property;
    break;
  }
  xcb_send_event(connection, 0, request->requestor, 0, (const char*)&answer);
  xcb_flush(connection);
}

static void handle(xcb_generic_event_t* event) {
  switch (event->response_type & 0x7f) {
    case XCB_KEY_PRESS:
      isPressed = true;
      break;
    case XCB_SELECTION_REQUEST:
      serve((const xcb_selection_request_event_t*)event);
      break;
    case XCB_SELECTION_NOTIFY:
      hasAnswer = true;
      answeredProperty = ((const xcb_selection_notify_event_t*)event)->property;
      break;
    case XCB_PROPERTY_NOTIFY: {
      const xcb_property_notify_event_t* const change = (const xcb_property_notify_event_t*)event;
      if (change->atom == atoms[PLACE] && change->state == XCB_PROPERTY_NEW_VALUE) hasNewData = true;
      break;
    }
    default:
      break;
  }
  free(event);
}

/* Handles events until `flag` is set or the time is up; a negative time is for ever. */
static bool pump(const bool* flag, int milliseconds) {
  const int64_t end = now() + milliseconds * INT64_C(1000000);
  for (;;) {
    xcb_generic_event_t* event;
    while ((event = xcb_poll_for_event(connection))) {
      handle(event);
      if (flag && *flag) return true;
    }
    if (xcb_connection_has_error(connection)) exit(EXIT_SUCCESS);
    const int64_t left = end - now();
    if (milliseconds >= 0 && left <= 0) return false;
    struct pollfd input = {xcb_get_file_descriptor(connection), POLLIN, 0};
    const struct timespec patienceLeft = {left / 1000000000, left % 1000000000};
    ppoll(&input, 1, milliseconds < 0 ? NULL : &patienceLeft, NULL);
  }
}

static xcb_get_property_reply_t* takeProperty(void) {
  hasNewData = false;
  return xcb_get_property_reply(
      connection, xcb_get_property(connection, 1, window, atoms[PLACE], XCB_ATOM_ANY, 0, UINT32_MAX / 4), NULL);
}

static bool readPieces(struct Item* item) {
  size_t capacity = 0;
  xcb_flush(connection);
  while (pump(&hasNewData, patience)) {
    xcb_get_property_reply_t* const piece = takeProperty();
    if (!piece) return false;
    const size_t size = (size_t)xcb_get_property_value_length(piece);
    if (size > 0) {
      while (item->size + size > capacity)
        item->bytes = allocate(item->bytes, capacity = capacity ? capacity * 2 : 1 << 20);
      memcpy(item->bytes + item->size, xcb_get_property_value(piece), size);
      item->size += size;
      item->type = piece->type;
      item->format = piece->format;
    }
    free(piece);
    if (size == 0) return true;
  }
  return false;
}

static bool readItem(xcb_atom_t target, struct Item* item) {
  *item = (struct Item){.target = target};
  hasAnswer = false;
  xcb_convert_selection(connection, window, atoms[CLIPBOARD], target, atoms[PLACE], XCB_CURRENT_TIME);
  xcb_flush(connection);
  if (!pump(&hasAnswer, patience) || answeredProperty == XCB_NONE) return false;
  xcb_get_property_reply_t* const reply = takeProperty();
  if (!reply) return false;
  const bool comesInPieces = reply->type == atoms[INCR];
  if (!comesInPieces) {
    item->type = reply->type;
    item->format = reply->format;
    item->size = (size_t)xcb_get_property_value_length(reply);
    item->bytes = allocate(NULL, item->size + 1);
    memcpy(item->bytes, xcb_get_property_value(reply), item->size);
  }
  free(reply);
  return comesInPieces ? readPieces(item) : item->format != 0;
}

static int save(struct Item* saved) {
  struct Item targets;
  int count = 0;
  if (!readItem(atoms[TARGETS], &targets)) return 0;
  const xcb_atom_t* const target = (const xcb_atom_t*)(const void*)targets.bytes;
  for (size_t i = 0; i < targets.size / sizeof *target && count < mostItems; ++i) {
    const bool isProtocol = target[i] == atoms[TARGETS] || target[i] == atoms[TIMESTAMP] ||
                            target[i] == atoms[MULTIPLE] || target[i] == atoms[SAVE_TARGETS];
    if (!isProtocol && readItem(target[i], &saved[count])) ++count;
  }
  free(targets.bytes);
  return count;
}

static void key(uint8_t code, bool isDown) {
  xcb_test_fake_input(connection, isDown ? XCB_KEY_PRESS : XCB_KEY_RELEASE, code, XCB_CURRENT_TIME, root, 0, 0, 0);
}

static void pressWithControl(uint8_t code) {
  xcb_query_keymap_reply_t* const held = xcb_query_keymap_reply(connection, xcb_query_keymap(connection), NULL);
  for (size_t i = 0; held && i < sizeof modifierKeys; ++i) {
    const uint8_t modifier = modifierKeys[i];
    if (held->keys[modifier / 8] & (1 << (modifier % 8))) key(modifier, false);
  }
  free(held);
  key(keyControl, true);
  key(code, true);
  key(code, false);
  key(keyControl, false);
  xcb_flush(connection);
}

static void offer(const struct Item* items, int count) {
  for (int i = 0; i < offeredCount; ++i) free(offered[i].bytes);
  memcpy(offered, items, sizeof *items * (size_t)count);
  offeredCount = count;
  xcb_set_selection_owner(connection, window, atoms[CLIPBOARD], XCB_CURRENT_TIME);
  xcb_flush(connection);
}

/* ---- one request ---- */

static bool writeAll(int socket, const char* bytes, size_t size) {
  while (size > 0) {
    const ssize_t written = write(socket, bytes, size);
    if (written <= 0) return false;
    bytes += written;
    size -= (size_t)written;
  }
  return true;
}

static char* escaped(char* to, const char* text, size_t size) {
  for (size_t i = 0; i < size; ++i) {
    const unsigned char c = (unsigned char)text[i];
    if (c < 0x20) {
      to += sprintf(to, "\\u%04x", c);
    } else {
      if (c == '"' || c == '\\') *to++ = '\\';
      *to++ = (char)c;
    }
  }
  return to;
}

/* The string that begins at `text`, unescaped in place. The model here escapes nothing but these. */
static size_t unescape(char* text) {
  char* to = text;
  for (char* from = text; *from && *from != '"'; ++from) {
    if (*from != '\\') {
      *to++ = *from;
      continue;
    }
    ++from;
    *to++ = *from == 'n' ? '\n' : *from == 't' ? '\t' : *from;
  }
  return (size_t)(to - text);
}

static int connectToModel(void) {
  const struct sockaddr_in address = {
      .sin_family = AF_INET, .sin_port = htons(port), .sin_addr.s_addr = htonl(INADDR_LOOPBACK)};
  const int yes = 1;
  const int server = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  setsockopt(server, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
  if (connect(server, (const struct sockaddr*)&address, sizeof address) == 0) return server;
  close(server);
  return -1;
}

static bool askModel(const struct Item* text, struct Item* answer) {
  static const char before[] =
      "{\"model\":\"bench\",\"temperature\":0.7,\"messages\":[{\"role\":\"system\",\"content\":\"p\"},"
      "{\"role\":\"user\",\"content\":\"";
  char* const body = allocate(NULL, text->size * 6 + sizeof before + 8);
  char* end = escaped(stpcpy(body, before), text->bytes, text->size);
  end = stpcpy(end, "\"}]}");

  char head[512];
  const int headSize = snprintf(head, sizeof head,
                                "POST %s HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Type: application/json\r\n"
                                "Content-Length: %zu\r\nConnection: close\r\n\r\n",
                                path, (size_t)(end - body));
  const int server = connectToModel();
  const bool isSent =
      server >= 0 && writeAll(server, head, (size_t)headSize) && writeAll(server, body, (size_t)(end - body));
  free(body);

  size_t size = 0, capacity = 1 << 16;
  char* reply = allocate(NULL, capacity + 1);
  ssize_t count = 0;
  while (isSent && (count = read(server, reply + size, capacity - size)) > 0) {
    size += (size_t)count;
    if (size == capacity) reply = allocate(reply, (capacity *= 2) + 1);
  }
  reply[size] = 0;
  if (server >= 0) close(server);

  static const char mark[] = "\"content\":\"";
  char* content = strstr(reply, mark);
  if (content) {
    content += strlen(mark);
    answer->size = unescape(content);
    memmove(reply, content, answer->size);
  }
  answer->target = answer->type = atoms[UTF8_STRING];
  answer->format = 8;
  answer->bytes = reply;
  return content != NULL;
}

static void run(void) {
  struct Item saved[mostItems];
  struct Item text, answer;
  const int savedCount = save(saved);
  pressWithControl(keyC);
  pump(NULL, waitAfterKeys);
  if (readItem(atoms[UTF8_STRING], &text) && askModel(&text, &answer)) {
    offer(&answer, 1);
    pressWithControl(keyV);
    pump(NULL, waitAfterKeys);
  }
  free(text.bytes);
  offer(saved, savedCount);
}

static void setUp(uint8_t hotkey) {
  root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
  window = xcb_generate_id(connection);
  const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
  xcb_create_window(connection, 0, window, root, 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT,
                    XCB_CW_EVENT_MASK, &events);
  xcb_intern_atom_cookie_t cookies[atomCount];
  for (int i = 0; i < atomCount; ++i) {
    cookies[i] = xcb_intern_atom(connection, 0, (uint16_t)strlen(atomNames[i]), atomNames[i]);
  }
  for (int i = 0; i < atomCount; ++i) {
    xcb_intern_atom_reply_t* const reply = xcb_intern_atom_reply(connection, cookies[i], NULL);
    atoms[i] = reply->atom;
    free(reply);
  }
  static const uint16_t locks[] = {0, XCB_MOD_MASK_LOCK, XCB_MOD_MASK_2, XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2};
  for (size_t i = 0; i < sizeof locks / sizeof *locks; ++i) {
    xcb_grab_key(connection, 0, root, XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1 | locks[i], hotkey, XCB_GRAB_MODE_ASYNC,
                 XCB_GRAB_MODE_ASYNC);
  }
  xcb_flush(connection);
}

int main(int count, char** arguments) {
  if (count != 3 || sscanf(arguments[2], "http://127.0.0.1:%hu%255s", &port, path) != 2) {
    fputs("usage: floor KEYCODE http://127.0.0.1:PORT/PATH\n", stderr);
    return 2;
  }
  connection = xcb_connect(NULL, NULL);
  if (xcb_connection_has_error(connection)) return EXIT_FAILURE;
  setUp((uint8_t)atoi(arguments[1]));
  for (;;) {
    pump(&isPressed, -1);
    xcb_ungrab_keyboard(connection, XCB_CURRENT_TIME);
    run();
    isPressed = false;
  }
}
