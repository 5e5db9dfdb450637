// Registration of the parameter behaviours as extensions of the feature types.
void KEPRshRegisterMetadata() {}
