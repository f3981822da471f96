#pragma once

namespace practice {

class Clock;
class PasswordWorker;
class Router;
class Sessions;
class SignInBrake;

/// POST /api/auth/login: {"email", "password"} gives {"token", "email", "user"}.
void addAuthRoutes(
    Router& router, Sessions& sessions, PasswordWorker& passwords, SignInBrake& brake, const Clock& clock);

} // namespace practice
