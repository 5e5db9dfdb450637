#include "KEPRshShaderParameterIndex.h"

#include <algorithm>
#include <utility>

KEPRshShaderParameterIndex::KEPRshShaderParameterIndex(const KEPRshShaderParameterIndex& other) {
  CopyFrom(other);
}

KEPRshShaderParameterIndex& KEPRshShaderParameterIndex::operator=(
    const KEPRshShaderParameterIndex& other) {
  if (this == &other) return *this;
  ReleaseParameters();
  CopyFrom(other);
  return *this;
}

KEPRshShaderParameterIndex::~KEPRshShaderParameterIndex() {
  ReleaseParameters();
}

void KEPRshShaderParameterIndex::CopyFrom(const KEPRshShaderParameterIndex& other) {
  // Member-wise, except that the copy holds references of its own on the parameters instead of
  // sharing the other's list.
  names_ = other.names_;
  firstPosition_ = other.firstPosition_;
  texturePositions_ = other.texturePositions_;
  std::copy(std::begin(other.readPositions_), std::end(other.readPositions_), readPositions_);
  if (other.parameters_) {
    parameters_ = new KEPListP<KEPIRshParameter>();
    for (int i = 1; i <= other.parameters_->Size(); ++i) {
      KEPIRshParameter* parameter = (*other.parameters_)[i];
      if (parameter) parameter->AddRef();
      parameters_->Append(parameter);
    }
  }
}

void KEPRshShaderParameterIndex::ReleaseParameters() {
  if (!parameters_) return;
  for (int i = 1; i <= parameters_->Size(); ++i)
    if (KEPIRshParameter* parameter = (*parameters_)[i]) parameter->Release();
  delete parameters_;
  parameters_ = nullptr;
}

void KEPRshShaderParameterIndex::Take(KEPListP<KEPIRshParameter>* list) {
  ReleaseParameters();
  parameters_ = list;
  if (!parameters_) return;
  texturePositions_.clear();
  for (int i = 1; i <= parameters_->Size(); ++i) {
    KEPIRshParameter* parameter = (*parameters_)[i];
    if (!parameter) continue;
    // A name that cannot be read is skipped: later names then pair with the next positions.
    KEPString name;
    if (SUCCEEDED(parameter->GetName(name))) {
      names_.Append(name);
      firstPosition_.try_emplace(std::move(name), names_.Size());
    }
    KEPString parameterType;
    if (SUCCEEDED(parameter->GetTypeName(parameterType)) && parameterType == "KEPRmaTexture")
      texturePositions_.push_back(i);
  }
  for (int k = 0; k < kReadNameCount; ++k)
    readPositions_[k] = std::max(PositionOf(kReadNames[k]), 0);
}

void KEPRshShaderParameterIndex::Clear() {
  if (!parameters_) return;
  ReleaseParameters();
  texturePositions_.clear();
}

KEPIRshParameter* KEPRshShaderParameterIndex::ByName(std::string_view name) const {
  if (!parameters_) return nullptr;
  // The first position of a name in the name list is its first match among 1..count, if any.
  // Positions past the end of the name list (names that could not be read) read as empty names,
  // so an empty name that is not in the list meets the first of them.
  auto it = firstPosition_.find(name);
  int position = it == firstPosition_.end() ? 0 : it->second;
  if (position == 0 && name.empty()) position = names_.Size() + 1;
  if (position == 0) return nullptr;
  return At(position);
}

int KEPRshShaderParameterIndex::PositionOf(std::string_view name) const {
  auto it = firstPosition_.find(name);
  return it == firstPosition_.end() ? -1 : it->second;
}
