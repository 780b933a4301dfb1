#include "sdk/backend/API.h"

#include <utility>

#include "platform/foundation/Print.h"
#include "platform/network/FormEncoding.h"
#include "platform/network/MultipartFormData.h"
#include "sdk/backend/BackendTransport.h"

namespace kestrova {

namespace {

// Prints what came back and hands it on if it is a JSON object.
HTTPTransport::AnswerHandler answerHandler(std::string_view failureLine,
                                           API::StepCompletionHandler completionHandler,
                                           API::FailureHandler failureHandler) {
  return [failureLine, completionHandler = std::move(completionHandler),
          failureHandler = std::move(failureHandler)](const Result<JSONValue>& answer) {
    const auto* const object = answer ? answer.value().dictionary() : nullptr;
    if (!object) {
      print(failureLine);
      if (failureHandler) failureHandler(API::Failure::noResponse);
      return;
    }
    print("JSON: " + description(*object));
    completionHandler(*object);
  };
}

JSONDictionary stepParameters(std::string_view apiKey, std::string_view authentication_key,
                              std::string_view step) {
  return {{"api_key", apiKey}, {"key", authentication_key}, {"step", step}};
}

std::vector<std::pair<std::string, std::string>> uploadParameters(
    std::string_view apiKey, std::string_view authentication_key, std::string_view step) {
  return {{"api_key", std::string(apiKey)},
          {"key", std::string(authentication_key)},
          {"step", std::string(step)}};
}

}  // namespace

void API::post(std::string_view path, const JSONDictionary& params,
               StepCompletionHandler completionHandler, FailureHandler failureHandler) {
  const auto transport = BackendTransport::current();
  if (!transport) return;
  HTTPRequest request;
  request.url.append("https://").append(host).append(path);
  request.headers = {{"Content-Type", "application/x-www-form-urlencoded; charset=utf-8"}};
  request.body = formEncoded(params);
  transport->sendForJSON(
      std::move(request),
      answerHandler("Could not parse", std::move(completionHandler), std::move(failureHandler)));
}

void API::createAuthentication(std::string_view apiKey, StepCompletionHandler completionHandler) {
  post("/authentications", {{"api_key", apiKey}, {"step", "initialize"}},
       std::move(completionHandler));
}

void API::sendStepsAndParametersToStepsEndoint(std::string_view /*apiKey*/,
                                               std::string_view /*authentication_key*/,
                                               const JSONDictionary& params,
                                               StepCompletionHandler completionHandler) {
  post("/authentications/steps", params, std::move(completionHandler));
}

void API::sendStepsAndParametersToAuthenticationAssessmentsEndpoint(
    std::string_view /*apiKey*/, std::string_view /*authentication_key*/,
    const JSONDictionary& params, StepCompletionHandler completionHandler) {
  post("/authentication_assessments", params, std::move(completionHandler));
}

void API::signupWithEmail(std::string_view apiKey, std::string_view authentication_key,
                          std::string_view email, StepCompletionHandler completionHandler,
                          FailureHandler failureHandler) {
  auto params = stepParameters(apiKey, authentication_key, "signup");
  params["identifier_type"] = "email";
  params["identifier"] = email;
  post("/authentications/steps", params, std::move(completionHandler), std::move(failureHandler));
}

void API::setNationality(std::string_view apiKey, std::string_view authentication_key,
                         std::string_view countryCode, StepCompletionHandler completionHandler) {
  auto params = stepParameters(apiKey, authentication_key, "set_nationality");
  params["country_code"] = countryCode;
  sendStepsAndParametersToStepsEndoint(apiKey, authentication_key, params,
                                       std::move(completionHandler));
}

void API::chooseAuthenticationDocument(std::string_view apiKey, std::string_view authentication_key,
                                       std::string_view documentType,
                                       StepCompletionHandler completionHandler) {
  auto params = stepParameters(apiKey, authentication_key, "choose_authentication_document");
  params["authentication_method"] = documentType;
  sendStepsAndParametersToStepsEndoint(apiKey, authentication_key, params,
                                       std::move(completionHandler));
}

void API::checkFaceVideo(std::string_view apiKey, std::string_view authentication_key,
                         StepCompletionHandler completionHandler) {
  sendStepsAndParametersToStepsEndoint(
      apiKey, authentication_key, stepParameters(apiKey, authentication_key, "check_face_video"),
      std::move(completionHandler));
}

void API::checkAuthenticationDocumentPicFRONT(std::string_view apiKey,
                                              std::string_view authentication_key,
                                              StepCompletionHandler completionHandler) {
  sendStepsAndParametersToStepsEndoint(
      apiKey, authentication_key,
      stepParameters(apiKey, authentication_key, "check_authentication_document_video"),
      std::move(completionHandler));
}

void API::checkAuthenticationDocumentPicBACK(std::string_view apiKey,
                                             std::string_view authentication_key,
                                             StepCompletionHandler completionHandler) {
  sendStepsAndParametersToStepsEndoint(
      apiKey, authentication_key,
      stepParameters(apiKey, authentication_key, "check_authentication_document_video_back"),
      std::move(completionHandler));
}

void API::checkAuthenticationDocumentSuccess(std::string_view apiKey,
                                             std::string_view authentication_key,
                                             StepCompletionHandler completionHandler) {
  sendStepsAndParametersToStepsEndoint(
      apiKey, authentication_key,
      stepParameters(apiKey, authentication_key, "check_authentication_document_video_success"),
      std::move(completionHandler));
}

void API::sendLivenessScore(std::string_view apiKey, std::string_view authentication_key,
                            JSONArray livenessAssessment, StepCompletionHandler completionHandler) {
  sendStepsAndParametersToAuthenticationAssessmentsEndpoint(
      apiKey, authentication_key,
      {{"api_key", apiKey},
       {"authentication_key", authentication_key},
       {"authentication_assessments", std::move(livenessAssessment)}},
      std::move(completionHandler));
}

void API::recordFaceVideo(const std::filesystem::path& url, std::string_view apiKey,
                          std::string_view authentication_key,
                          StepCompletionHandler completionHandler, FailureHandler failureHandler) {
  uploadDataFromURL(url, uploadParameters(apiKey, authentication_key, "record_face_video"), "video",
                    "video.mov", "video/quicktime", std::move(completionHandler),
                    std::move(failureHandler));
}

void API::recordAuthenticationDocumentPicFRONT(const std::filesystem::path& url,
                                               std::string_view apiKey,
                                               std::string_view authentication_key,
                                               StepCompletionHandler completionHandler,
                                               FailureHandler failureHandler) {
  uploadDataFromURL(
      url, uploadParameters(apiKey, authentication_key, "record_authentication_document_video"),
      "picture", "picture.png", "image/png", std::move(completionHandler),
      std::move(failureHandler));
}

void API::recordAuthenticationDocumentPicBACK(const std::filesystem::path& url,
                                              std::string_view apiKey,
                                              std::string_view authentication_key,
                                              StepCompletionHandler completionHandler,
                                              FailureHandler failureHandler) {
  uploadDataFromURL(
      url,
      uploadParameters(apiKey, authentication_key, "record_authentication_document_video_back"),
      "picture", "picture.png", "image/png", std::move(completionHandler),
      std::move(failureHandler));
}

void API::uploadDataFromURL(const std::filesystem::path& url,
                            const std::vector<std::pair<std::string, std::string>>& parameters,
                            const std::string& name, const std::string& fileName,
                            const std::string& mime_type, StepCompletionHandler onCompletion,
                            FailureHandler failureHandler) {
  const auto transport = BackendTransport::current();
  if (!transport) return;
  std::string target = "https://";
  target.append(host).append("/").append(endpoint);
  transport->upload(
      std::move(target), {{"Content-type", "multipart/form-data"}},
      [=](MultipartFormData& form) {
        for (const auto& [key, value] : parameters) form.append(value, key);
        form.append(url, name, fileName, mime_type);
        print("multipartFormData: " + std::string(MultipartFormData::description()));
      },
      [failureHandler](const NSError& error) {
        print("Error in upload: " + error.localizedDescription);
        if (failureHandler) failureHandler(Failure::notEncoded);
      },
      answerHandler("Could not parse response as JSON", std::move(onCompletion), failureHandler));
}

}  // namespace kestrova
