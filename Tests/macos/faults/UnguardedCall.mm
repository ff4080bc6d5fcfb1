#import <ScreenCaptureKit/ScreenCaptureKit.h>

// Must be rejected: the oldest system that we support lacks the property.
void fault(SCStreamConfiguration *configuration)
{
    configuration.captureMicrophone = YES;
}
