#include "practice/server/AuthResource.h"

#include "practice/server/BodyReader.h"
#include "practice/server/Clock.h"
#include "practice/server/JsonText.h"
#include "practice/server/PasswordWorker.h"
#include "practice/server/Router.h"
#include "practice/server/Sessions.h"
#include "practice/server/SignInBrake.h"

#include <chrono>
#include <string>

namespace practice {

namespace {

// Checked when nobody has the e-mail address, so that the time of the answer does not tell who exists.
// No password is known to give it.
constexpr const char* nobodysHash
    = "$y$j9T$V7qMYJaNbVKOeh4PhtqP..$Rk3jD1YfoXkXUadLOgO1uLctths2s/HjMy5k2tiABF0";

ApiReply signedIn(Sessions& sessions, const User& user, TimeMs now)
{
    const std::string token = sessions.open(user.id, now);
    return {200,
        jsonText({{"token", token}, {"email", user.email},
            {"user", {{"id", user.id}, {"email", user.email}, {"name", user.name}}}}),
        {}};
}

void requirePatience(const SignInBrake& brake, const std::string& client)
{
    const auto wait = brake.waitOf(client, std::chrono::steady_clock::now()).count();
    if (wait > 0) {
        throw ApiError{429,
            "Too many sign-ins have failed. Wait " + std::to_string(wait)
                + (wait == 1 ? " second" : " seconds") + " and try again."};
    }
}

} // namespace

void addAuthRoutes(
    Router& router, Sessions& sessions, PasswordWorker& passwords, SignInBrake& brake, const Clock& clock)
{
    router.addLater("POST", "/api/auth/login", Router::Access::Everybody,
        [&sessions, &passwords, &brake, &clock](const ApiRequest& request, const Respond& respond) {
            const BodyReader body(request.body);
            const std::string email = body.text("email");
            const std::string password = body.text("password");
            requirePatience(brake, request.client);
            const auto user = sessions.users().byEmail(email);
            const auto finish
                = [&sessions, &brake, &clock, user, client = request.client, respond](bool matches) {
                      if (user && matches)
                          brake.succeeded(client);
                      else
                          brake.failed(client, std::chrono::steady_clock::now());
                      answer(respond, [&] {
                          if (!user || !matches)
                              throw ApiError{401, "The e-mail address or the password is wrong."};
                          return signedIn(sessions, *user, clock.now());
                      });
                  };
            if (!passwords.check(password, user ? user->passwordHash : nobodysHash, finish))
                throw ApiError{429, "Too many sign-ins at once. Wait a moment and try again."};
            brake.begun(request.client, std::chrono::steady_clock::now());
        });
}

} // namespace practice
