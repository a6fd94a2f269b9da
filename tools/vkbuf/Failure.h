// How a command ends otherwise than well. Thrown by whoever finds the fault and printed once, in main.
#pragma once

#include <stdexcept>
#include <string>

// Exit statuses. There are no others.
constexpr int kDone = 0;    // done, or the answer is yes
constexpr int kNo = 1;      // the data says no: it does not decode, convert, match
constexpr int kFailed = 2;  // wrong use, or input or output failed

struct Failure : std::runtime_error {
  Failure(int exitStatus, const std::string& message, std::string nextStep = {})
      : std::runtime_error(message), status(exitStatus), hint(std::move(nextStep)) {}

  int status;
  std::string hint;  // a next step for the person, or empty
};

/// Whether the head of an error is red: by default in a terminal, unless NO_COLOR or TERM=dumb says otherwise.
enum class Color { whereSeen, always, never };
void setColor(Color wanted);

/// Prints a line for people: standard error, behind the tool's name.
void say(const std::string& line);
/// Prints the line of a failure, and its hint.
void say(const Failure& failure);
