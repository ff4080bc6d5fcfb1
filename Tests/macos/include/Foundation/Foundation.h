#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CoreGraphics.h>
#include <CoreServices/CoreServices.h>
#include <dispatch/dispatch.h>

#pragma clang assume_nonnull begin

typedef bool BOOL;
#define YES __objc_yes
#define NO __objc_no
typedef long NSInteger;
typedef unsigned long NSUInteger;
typedef unsigned short unichar;
typedef double NSTimeInterval;
typedef CGRect NSRect;
typedef CGSize NSSize;

#define nil nullptr

#define NS_ENUM(type, name)                                                                                  \
    enum name : type name;                                                                                   \
    enum __attribute__((enum_extensibility(open))) name : type
#define NS_OPTIONS(type, name)                                                                               \
    type name;                                                                                               \
    enum __attribute__((flag_enum, enum_extensibility(open))) : type

@class NSArray<ObjectType>;
@class NSDictionary<KeyType, ObjectType>;
@class NSString;
@class NSError;
@class NSException;
@class NSURL;
@class NSOperationQueue;

extern "C" const NSRect NSZeroRect;

@protocol NSObject
- (BOOL)isKindOfClass:(Class)aClass;
- (BOOL)respondsToSelector:(SEL)selector;
@end

@protocol NSCopying
@end

__attribute__((objc_root_class))
@interface NSObject<NSObject>
+ (instancetype)new;
+ (instancetype)alloc;
+ (Class)class;
- (instancetype)init;
- (void)addObserver:(NSObject *)observer
         forKeyPath:(NSString *)keyPath
            options:(NSUInteger)options
            context:(nullable void *)context;
- (void)removeObserver:(NSObject *)observer forKeyPath:(NSString *)keyPath context:(nullable void *)context;
- (void)observeValueForKeyPath:(nullable NSString *)keyPath
                      ofObject:(nullable id)object
                        change:(nullable NSDictionary<NSString *, id> *)change
                       context:(nullable void *)context;
@end

typedef struct {
    unsigned long state;
    id __unsafe_unretained _Nullable *_Nullable itemsPtr;
    unsigned long *_Nullable mutationsPtr;
    unsigned long extra[5];
} NSFastEnumerationState;

@protocol NSFastEnumeration
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState *)state
                                  objects:(id __unsafe_unretained _Nullable[_Nonnull])buffer
                                    count:(NSUInteger)length;
@end

@interface NSString : NSObject <NSCopying>
@property(readonly) NSUInteger length;
+ (instancetype)stringWithCharacters:(const unichar *)characters length:(NSUInteger)length;
- (void)getCharacters:(unichar *)buffer range:(struct _NSRange)range;
- (BOOL)isEqualToString:(NSString *)other;
@end

typedef struct _NSRange {
    NSUInteger location;
    NSUInteger length;
} NSRange;
extern "C" NSRange NSMakeRange(NSUInteger location, NSUInteger length);

@interface NSNumber : NSObject <NSCopying>
@property(readonly) BOOL boolValue;
@property(readonly) double doubleValue;
@property(readonly) int intValue;
@property(readonly) NSInteger integerValue;
@property(readonly) unsigned int unsignedIntValue;
+ (NSNumber *)numberWithBool:(BOOL)value;
+ (NSNumber *)numberWithInt:(int)value;
+ (NSNumber *)numberWithUnsignedInt:(unsigned int)value;
+ (NSNumber *)numberWithLong:(long)value;
+ (NSNumber *)numberWithLongLong:(long long)value;
+ (NSNumber *)numberWithDouble:(double)value;
@end

@interface NSData : NSObject <NSCopying>
@property(readonly) NSUInteger length;
@property(readonly, nullable) const void *bytes;
+ (instancetype)dataWithBytes:(nullable const void *)bytes length:(NSUInteger)length;
@end

@interface NSArray<__covariant ObjectType> : NSObject <NSCopying, NSFastEnumeration>
@property(readonly) NSUInteger count;
@property(nullable, nonatomic, readonly) ObjectType firstObject;
+ (instancetype)arrayWithObjects:(const ObjectType _Nonnull[_Nonnull])objects count:(NSUInteger)count;
- (ObjectType)objectAtIndexedSubscript:(NSUInteger)index;
- (BOOL)containsObject:(ObjectType)object;
@end

@interface NSMutableArray<ObjectType> : NSArray <ObjectType>
+ (instancetype)array;
- (void)addObject:(ObjectType)object;
@end

@interface NSDictionary<__covariant KeyType, __covariant ObjectType> : NSObject <NSCopying, NSFastEnumeration>
+ (instancetype)dictionaryWithObjects:(const ObjectType _Nonnull[_Nullable])objects
                              forKeys:(const KeyType<NSCopying> _Nonnull[_Nullable])keys
                                count:(NSUInteger)count;
- (nullable ObjectType)objectForKeyedSubscript:(KeyType)key;
@end

@interface NSMutableDictionary<KeyType, ObjectType> : NSDictionary <KeyType, ObjectType>
+ (instancetype)dictionary;
- (void)setObject:(nullable ObjectType)object forKeyedSubscript:(KeyType<NSCopying>)key;
@end

@interface NSSet<__covariant ObjectType> : NSObject <NSCopying>
+ (instancetype)setWithObject:(ObjectType)object;
@end

typedef NSString *NSErrorDomain;
typedef NSString *NSErrorUserInfoKey;
extern "C" NSErrorUserInfoKey const NSLocalizedDescriptionKey;

@interface NSError : NSObject
@property(readonly) NSInteger code;
@property(readonly, copy) NSErrorDomain domain;
@property(readonly, copy) NSString *localizedDescription;
+ (instancetype)errorWithDomain:(NSErrorDomain)domain
                           code:(NSInteger)code
                       userInfo:(nullable NSDictionary<NSErrorUserInfoKey, id> *)userInfo;
@end

typedef NSString *NSExceptionName;
@interface NSException : NSObject
@property(readonly, copy) NSExceptionName name;
@property(nullable, readonly, copy) NSString *reason;
@end

typedef NSString *NSURLResourceKey;
extern NSURLResourceKey const NSURLVolumeUUIDStringKey API_AVAILABLE(macos(10.7));

@interface NSURL : NSObject <NSCopying>
@property(nullable, readonly, copy) NSString *path;
+ (NSURL *)fileURLWithPath:(NSString *)path;
+ (NSURL *)fileURLWithPath:(NSString *)path isDirectory:(BOOL)isDirectory;
+ (nullable instancetype)URLWithString:(NSString *)text;
- (BOOL)getResourceValue:(out id _Nullable *_Nonnull)value
                  forKey:(NSURLResourceKey)key
                   error:(out NSError *_Nullable *_Nullable)error API_AVAILABLE(macos(10.6));
@end

@interface NSDirectoryEnumerator<ObjectType> : NSObject <NSFastEnumeration>
@end

@interface NSFileManager : NSObject
@property(class, readonly, strong) NSFileManager *defaultManager;
- (nullable NSDirectoryEnumerator<NSString *> *)enumeratorAtPath:(NSString *)path;
- (BOOL)copyItemAtURL:(NSURL *)srcURL
                toURL:(NSURL *)dstURL
                error:(NSError *_Nullable *_Nullable)error API_AVAILABLE(macos(10.6));
- (BOOL)removeItemAtURL:(NSURL *)URL error:(NSError *_Nullable *_Nullable)error API_AVAILABLE(macos(10.6));
- (BOOL)trashItemAtURL:(NSURL *)url
      resultingItemURL:(NSURL *_Nullable *_Nullable)outResultingURL
                 error:(NSError *_Nullable *_Nullable)error API_AVAILABLE(macos(10.8));
- (BOOL)moveItemAtURL:(NSURL *)srcURL
                toURL:(NSURL *)dstURL
                error:(NSError *_Nullable *_Nullable)error API_AVAILABLE(macos(10.6));
@end

@interface NSBundle : NSObject
@property(class, readonly, strong) NSBundle *mainBundle;
@property(nullable, readonly, copy) NSString *bundleIdentifier;
@property(readonly, copy) NSString *bundlePath;
@property(nullable, readonly, copy) NSDictionary<NSString *, id> *infoDictionary;
+ (nullable instancetype)bundleWithPath:(NSString *)path;
@end

@interface NSUserDefaults : NSObject
@property(class, readonly, strong) NSUserDefaults *standardUserDefaults;
- (nullable instancetype)initWithSuiteName:(nullable NSString *)suiteName;
- (nullable NSDictionary<NSString *, id> *)persistentDomainForName:(NSString *)name;
- (void)setObject:(nullable id)value forKey:(NSString *)key;
- (void)removeObjectForKey:(NSString *)key;
@end

typedef NSString *NSNotificationName;
@interface NSNotification : NSObject <NSCopying>
@property(readonly, copy) NSNotificationName name;
@property(nullable, readonly, strong) id object;
@property(nullable, readonly, copy) NSDictionary *userInfo;
@end

@interface NSNotificationCenter : NSObject
@property(class, readonly, strong) NSNotificationCenter *defaultCenter;
- (void)addObserver:(id)observer
           selector:(SEL)selector
               name:(nullable NSNotificationName)name
             object:(nullable id)object;
- (id<NSObject>)addObserverForName:(nullable NSNotificationName)name
                            object:(nullable id)object
                             queue:(nullable NSOperationQueue *)queue
                        usingBlock:(void (^)(NSNotification *notification))block API_AVAILABLE(macos(10.6));
- (void)removeObserver:(id)observer;
@end

typedef NS_ENUM(NSUInteger, NSNotificationSuspensionBehavior) {
    NSNotificationSuspensionBehaviorDeliverImmediately = 4,
};

@interface NSDistributedNotificationCenter : NSNotificationCenter
+ (NSDistributedNotificationCenter *)defaultCenter;
- (void)addObserver:(id)observer
              selector:(SEL)selector
                  name:(nullable NSNotificationName)name
                object:(nullable NSString *)object
    suspensionBehavior:(NSNotificationSuspensionBehavior)suspensionBehavior;
- (void)postNotificationName:(NSNotificationName)name
                      object:(nullable NSString *)object
                    userInfo:(nullable NSDictionary *)userInfo
          deliverImmediately:(BOOL)deliverImmediately;
@end

@interface NSAppleEventDescriptor : NSObject
@property(readonly) AEEventID eventID;
@property(readonly) OSType enumCodeValue;
- (nullable NSAppleEventDescriptor *)paramDescriptorForKeyword:(AEKeyword)keyword;
@end

@interface NSAppleEventManager : NSObject
+ (NSAppleEventManager *)sharedAppleEventManager;
@property(nullable, readonly, strong) NSAppleEventDescriptor *currentAppleEvent;
- (void)setEventHandler:(id)handler
            andSelector:(SEL)handleEventSelector
          forEventClass:(AEEventClass)eventClass
             andEventID:(AEEventID)eventID;
- (void)removeEventHandlerForEventClass:(AEEventClass)eventClass andEventID:(AEEventID)eventID;
@end

@interface NSTask : NSObject
@property(nullable, copy) NSURL *executableURL API_AVAILABLE(macos(10.13));
@property(nullable, copy) NSArray<NSString *> *arguments;
- (BOOL)launchAndReturnError:(NSError *_Nullable *_Nullable)error API_AVAILABLE(macos(10.13));
@end

extern "C" id _Nullable CFBridgingRelease(CFTypeRef __attribute__((cf_consumed)) _Nullable object);

#pragma clang assume_nonnull end
