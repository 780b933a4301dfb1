#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/foundation/JSONValue.h"
#include "platform/network/HTTPTransport.h"
#include "sdk/Platform.h"

namespace kestrova {

// Every request to the verification backend. The operations start a request and return at once; any
// thread may call them. The handler is called at most once, on the main queue, and only with an
// answer that is a JSON object, whatever its HTTP status; everything else ends in one line on
// standard output.
class API {
 public:
  using StepCompletionHandler = std::function<void(const JSONDictionary& answer)>;
  enum class Failure {
    // The form could not be written to a temporary file; nothing was sent.
    notEncoded,
    // The request failed, or its response is no JSON object.
    noResponse
  };
  // Called at most once, on the main queue, instead of the completion handler.
  using FailureHandler = std::function<void(Failure)>;

  // Opens an authentication: step "initialize".
  static void createAuthentication(std::string_view apiKey,
                                   StepCompletionHandler completionHandler);

  // Post exactly `params`; the keys do not travel unless params hold them.
  static void sendStepsAndParametersToStepsEndoint(std::string_view apiKey,
                                                   std::string_view authentication_key,
                                                   const JSONDictionary& params,
                                                   StepCompletionHandler completionHandler);
  static void sendStepsAndParametersToAuthenticationAssessmentsEndpoint(
      std::string_view apiKey, std::string_view authentication_key, const JSONDictionary& params,
      StepCompletionHandler completionHandler);

  // The steps of the flow.
  static void signupWithEmail(std::string_view apiKey, std::string_view authentication_key,
                              std::string_view email, StepCompletionHandler completionHandler) {
    signupWithEmail(apiKey, authentication_key, email, std::move(completionHandler), {});
  }
  static void signupWithEmail(std::string_view apiKey, std::string_view authentication_key,
                              std::string_view email, StepCompletionHandler completionHandler,
                              FailureHandler failureHandler);
  static void setNationality(std::string_view apiKey, std::string_view authentication_key,
                             std::string_view countryCode, StepCompletionHandler completionHandler);
  static void chooseAuthenticationDocument(std::string_view apiKey,
                                           std::string_view authentication_key,
                                           std::string_view documentType,
                                           StepCompletionHandler completionHandler);
  static void checkFaceVideo(std::string_view apiKey, std::string_view authentication_key,
                             StepCompletionHandler completionHandler);
  static void checkAuthenticationDocumentPicFRONT(std::string_view apiKey,
                                                  std::string_view authentication_key,
                                                  StepCompletionHandler completionHandler);
  static void checkAuthenticationDocumentPicBACK(std::string_view apiKey,
                                                 std::string_view authentication_key,
                                                 StepCompletionHandler completionHandler);
  static void checkAuthenticationDocumentSuccess(std::string_view apiKey,
                                                 std::string_view authentication_key,
                                                 StepCompletionHandler completionHandler);
  // `livenessAssessment`: dictionaries of texts with "token" and "value".
  static void sendLivenessScore(std::string_view apiKey, std::string_view authentication_key,
                                JSONArray livenessAssessment,
                                StepCompletionHandler completionHandler);

  // The uploads. `url` is a local file, read on the transport's encoding queue; a file that cannot
  // be read leaves a form without a file part.
  static void recordFaceVideo(const std::filesystem::path& url, std::string_view apiKey,
                              std::string_view authentication_key,
                              StepCompletionHandler completionHandler) {
    recordFaceVideo(url, apiKey, authentication_key, std::move(completionHandler), {});
  }
  static void recordFaceVideo(const std::filesystem::path& url, std::string_view apiKey,
                              std::string_view authentication_key,
                              StepCompletionHandler completionHandler,
                              FailureHandler failureHandler);
  static void recordAuthenticationDocumentPicFRONT(const std::filesystem::path& url,
                                                   std::string_view apiKey,
                                                   std::string_view authentication_key,
                                                   StepCompletionHandler completionHandler) {
    recordAuthenticationDocumentPicFRONT(url, apiKey, authentication_key,
                                         std::move(completionHandler), {});
  }
  static void recordAuthenticationDocumentPicFRONT(const std::filesystem::path& url,
                                                   std::string_view apiKey,
                                                   std::string_view authentication_key,
                                                   StepCompletionHandler completionHandler,
                                                   FailureHandler failureHandler);
  static void recordAuthenticationDocumentPicBACK(const std::filesystem::path& url,
                                                  std::string_view apiKey,
                                                  std::string_view authentication_key,
                                                  StepCompletionHandler completionHandler) {
    recordAuthenticationDocumentPicBACK(url, apiKey, authentication_key,
                                        std::move(completionHandler), {});
  }
  static void recordAuthenticationDocumentPicBACK(const std::filesystem::path& url,
                                                  std::string_view apiKey,
                                                  std::string_view authentication_key,
                                                  StepCompletionHandler completionHandler,
                                                  FailureHandler failureHandler);

 private:
  // Host name and path prefix, without scheme and trailing slash.
  static constexpr std::string_view host = KESTROVA_BACKEND_HOST "/api/v1";
  static constexpr std::string_view endpoint = "authentications/document_files";

  static void post(std::string_view path, const JSONDictionary& params,
                   StepCompletionHandler completionHandler, FailureHandler failureHandler = {});
  static void uploadDataFromURL(const std::filesystem::path& url,
                                const std::vector<std::pair<std::string, std::string>>& parameters,
                                const std::string& name, const std::string& fileName,
                                const std::string& mime_type, StepCompletionHandler onCompletion,
                                FailureHandler failureHandler);
};

}  // namespace kestrova
