#import <Foundation/Foundation.h>

// Must be rejected: under automatic reference counting a plain pointer keeps
// no object alive.
const void *fault(NSString *text)
{
    return (const void *)text;
}
